#ifndef AT_CODEC_ATPUBLIC_H
#define AT_CODEC_ATPUBLIC_H

// The text helpers live below the commands, which use them too; this is their name towards the codec's
// readers.
#include "text/atpublic.h"
#include "text/scan.h"

#endif

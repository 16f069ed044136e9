// The same as C++, the language of the records' checks of layout at compile time.
#include "module.c"

static_assert(sizeof(ResponseOf(*static_cast<MSG_BUF*>(nullptr)).aucParas) == AT_RESPONSE_PARAS_SIZE);

#ifndef AT_RECORDS_QUEUE_H
#define AT_RECORDS_QUEUE_H

#include <stddef.h>

#include "records/message.h"

// System V message queues. What travels is the 652 bytes behind lMsgType; the type goes through the queue
// calls as a `long`, which is not 4 bytes everywhere, so records pass through a shim of their own. Log lines
// carry "at_server".

// What the queue calls are given, on every target.
struct QueueMessage {
    long mtype;
    unsigned char body[AT_WIRE_SIZE];
};

// Between a record and what travels. FromWire is false when the type does not fit a positive 32-bit number.
void ToWire(const MSG_BUF& record, QueueMessage& wire);
bool FromWire(const QueueMessage& wire, MSG_BUF& record);

// Sends one message to the queue of its usTargetModuleID, which must exist. Blocks while that queue is full.
// A result field of 0 becomes 1 in the caller's record; a message for command 0x0403 (hang-up) ends the wait
// for a dial. 0 when sent, 1 on any failure (null message, module id 0, no such queue, msgsnd).
int send_msg_buf(MSG_BUF* msg);

// Messages waiting in a queue, or -1 when it cannot be read.
int QueueDepth(int queue_id);

#endif

#include <string.h>

#include "client/internal.h"

_Static_assert(sizeof(MSG_BUF) - offsetof(MSG_BUF, usTargetModuleID) == AT_WIRE_SIZE, "what travels");
_Static_assert(offsetof(MSG_BUF, aucDataBuf) - offsetof(MSG_BUF, usTargetModuleID) +
                       offsetof(_BK_AT_RES_T, aucParas) ==
                   AT_CLIENT_PARAS_OFFSET,
               "where the parameters of an answer stand in what travels");

bool at_client_read_message(at_client_message* message, uint16_t module, const wire_message* wire,
                            size_t length) {
    memset(message, 0, sizeof *message);
    const bool whole = length == AT_WIRE_SIZE;
    message->length = (uint16_t)(length < AT_WIRE_SIZE ? length : AT_WIRE_SIZE);
    memcpy(message->body, wire->body, message->length);
    const bool good_type = wire->mtype > 0 && wire->mtype <= INT32_MAX;
    message->type = good_type ? (int32_t)wire->mtype : 0;

    MSG_BUF record = {0};
    memcpy(&record.usTargetModuleID, message->body, AT_WIRE_SIZE);
    _BK_AT_RES_T res;
    memcpy(&res, record.aucDataBuf, sizeof res);
    message->cmd_id = res.usCmdID;
    message->cmd_type = res.ucCmdType;
    message->result = res.ucResult;
    message->record_size = res.usParaLen;
    message->size = res.usParaLen < AT_RESPONSE_PARAS_SIZE ? res.usParaLen : AT_RESPONSE_PARAS_SIZE;
    return whole && good_type && record.ulMagic == AT_MESSAGE_MAGIC &&
           record.usMsgCmd == AT_MESSAGE_COMMAND && record.usTargetModuleID == module;
}

void at_client_write_request(wire_message* wire, int32_t type, uint16_t module, uint16_t cmd_id,
                             uint8_t cmd_type, const void* paras, size_t paras_size) {
    _BK_AT_CMD_T command = {.usCmdID = cmd_id, .ucCmdType = cmd_type, .usParaLen = (uint16_t)paras_size};
    if (paras_size != 0) memcpy(command.aucParas, paras, paras_size);
    MSG_BUF record = {.usTargetModuleID = AT_MODULE_SERVER,
                      .usSourceModuleID = module,
                      .usMsgCmd = AT_MESSAGE_COMMAND,
                      .usDataLen = (uint16_t)(offsetof(_BK_AT_CMD_T, aucParas) + paras_size),
                      .ulMagic = AT_MESSAGE_MAGIC};
    memcpy(record.aucDataBuf, &command, sizeof command);
    wire->mtype = type;
    memcpy(wire->body, &record.usTargetModuleID, AT_WIRE_SIZE);
    wire->body[AT_WIRE_SIZE] = 0;
}

bool at_client_is_dial(uint16_t cmd_id, uint8_t cmd_type) {
    return cmd_type == AT_CMD_TYPE_EXEC && (cmd_id == 0x0401 /* D */ || cmd_id == 0x040F /* +CDV */);
}

at_client_error at_client_record(const at_client_message* message, void* record, size_t size) {
    if (message == NULL || record == NULL) return AT_CLIENT_MISUSE;
    memset(record, 0, size);
    if (message->kind == AT_CLIENT_FOREIGN || message->record_size != size) return AT_CLIENT_WRONG_SIZE;
    memcpy(record, at_client_paras(message), message->size);
    return message->size == size ? AT_CLIENT_OK : AT_CLIENT_CUT;
}

void at_client_text(const at_client_message* message, char* text, size_t size) {
    if (text == NULL || size == 0) return;
    size_t length = 0;
    if (message != NULL) {
        const char* paras = (const char*)at_client_paras(message);
        length = strnlen(paras, message->size < size - 1 ? message->size : size - 1);
        memcpy(text, paras, length);
    }
    text[length] = '\0';
}

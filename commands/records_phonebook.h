#ifndef AT_COMMANDS_RECORDS_PHONEBOOK_H
#define AT_COMMANDS_RECORDS_PHONEBOOK_H

/* Parameter records of the phonebook. Usable from C11 and C++; the conventions stand in records_network.h.
 * Texts are in the character set chosen with AT+CSCS; nobody converts them. */

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* AT+CPBS="<storage>" */
typedef struct {
    char storage[20]; /* "SM", "ME", ... */
} AT_CPBS_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPBS_SET_PARA_T) == 20);

/* +CPBS: <storage>,<used>,<total>, each cut at 4 characters. The answer carries it under the length 0. */
typedef struct {
    char storage[5]; /* with its quotation marks: "SM" */
    char usedEntries[5];
    char totalEntries[5];
} AT_CPBS_READ_RES_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_CPBS_READ_RES_PARA_T, usedEntries) == 5);
AT_ASSERT_LAYOUT(offsetof(AT_CPBS_READ_RES_PARA_T, totalEntries) == 10);
AT_ASSERT_LAYOUT(sizeof(AT_CPBS_READ_RES_PARA_T) == 15);

/* AT+CPBR=<first>[,<last>] and AT+ZCPBR=<first>[,<last>] */
typedef struct {
    int32_t first; /* place of the first entry */
    int32_t last;  /* of the last one; 0: the first alone */
} AT_CPBR_SET_PARA_T;
typedef AT_CPBR_SET_PARA_T AT_ZCPBR_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPBR_SET_PARA_T) == 8);

/* AT+CPBW=[<index>],"<number>",[<type>],"<text>", or AT+CPBW=<index> to delete an entry; and one entry of a
 * list, +CPBR: <index>,"<number>",<type>,"<text>", where number has at most 80 and text at most 120
 * characters. */
typedef struct {
    int32_t index;   /* place; 0 in a request: the first free one */
    char number[84]; /* number and text empty in a request: deletes the entry */
    int32_t type;    /* 145 international, 129 other; 0 in a request: the modem's choice */
    char text[128];  /* the name */
} AT_CPBW_SET_PARA_T;
typedef AT_CPBW_SET_PARA_T AT_CPBR_ENTRY_T;
AT_ASSERT_LAYOUT(offsetof(AT_CPBW_SET_PARA_T, number) == 4);
AT_ASSERT_LAYOUT(offsetof(AT_CPBW_SET_PARA_T, type) == 88);
AT_ASSERT_LAYOUT(offsetof(AT_CPBW_SET_PARA_T, text) == 92);
AT_ASSERT_LAYOUT(sizeof(AT_CPBW_SET_PARA_T) == 220);

/* The answer to AT+CPBR=. Larger than a message: it is the content of /etc_rw/config/Phonebak. */
typedef struct {
    int32_t count; /* 0..100 */
    AT_CPBR_ENTRY_T entries[100];
} AT_CPBR_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPBR_SET_RES_PARA_T) == 22004);

/* The answer to AT+CPBR=?, +CPBR: (<first>-<last>),<number_length>,<text_length> */
typedef struct {
    int32_t first;
    int32_t last;
    int32_t number_length; /* the modem's longest, characters */
    int32_t text_length;
} AT_CPBR_TEST_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CPBR_TEST_RES_PARA_T) == 16);

/* AT+ZCPBW=[<index>],"<number>",[<type>],"<name>","<text2>","<text3>","<text4>", or AT+ZCPBW=<index> to
 * delete an entry */
typedef struct {
    int32_t index;   /* place; 0: the first free one */
    char number[84]; /* all five texts empty: deletes the entry */
    int32_t type;    /* 145 international, 129 other; 0: the modem's choice */
    char name[64];
    char text2[84];
    char text3[84];
    char text4[132];
} AT_ZCPBW_SET_PARA_T;
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBW_SET_PARA_T, type) == 88);
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBW_SET_PARA_T, name) == 92);
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBW_SET_PARA_T, text2) == 156);
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBW_SET_PARA_T, text3) == 240);
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBW_SET_PARA_T, text4) == 324);
AT_ASSERT_LAYOUT(sizeof(AT_ZCPBW_SET_PARA_T) == 456);

/* One entry of a list: +ZCPBR: <index>,"<number>","<name>","<text2>","<text3>","<text4>" */
typedef struct {
    int32_t index;
    char number[84]; /* at most 80 characters */
    char name[64];   /* at most 60 characters */
    char text2[84];  /* at most 80 characters */
    char text3[84];  /* at most 80 characters */
    char text4[132]; /* at most 128 characters */
} AT_ZCPBR_ENTRY_T;
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBR_ENTRY_T, name) == 88);
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBR_ENTRY_T, text2) == 152);
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBR_ENTRY_T, text3) == 236);
AT_ASSERT_LAYOUT(offsetof(AT_ZCPBR_ENTRY_T, text4) == 320);
AT_ASSERT_LAYOUT(sizeof(AT_ZCPBR_ENTRY_T) == 452);

/* The answer to AT+ZCPBR=. Larger than a message: it is the content of /etc_rw/config/Phonebak. */
typedef struct {
    int32_t count; /* 0..100 */
    AT_ZCPBR_ENTRY_T entries[100];
} AT_ZCPBR_SET_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCPBR_SET_RES_PARA_T) == 45204);

/* The answer to AT+ZCPBR=?, +ZCPBR: (<first>-<last>) and the modem's longest of each text, characters */
typedef struct {
    int32_t first;
    int32_t last;
    int32_t number_length;
    int32_t name_length;
    int32_t text2_length;
    int32_t text3_length;
    int32_t text4_length;
} AT_ZCPBR_TEST_RES_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_ZCPBR_TEST_RES_PARA_T) == 28);

/* AT+CSCS="<chset>" */
typedef struct {
    char chset[10]; /* "GSM", "UCS2", ... */
} AT_CSCS_SET_PARA_T;
AT_ASSERT_LAYOUT(sizeof(AT_CSCS_SET_PARA_T) == 10);

#ifdef __cplusplus
}
#endif

#endif

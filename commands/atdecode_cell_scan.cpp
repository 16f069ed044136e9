#include <string.h>

#include "commands/atdecode.h"
#include "commands/records_network.h"
#include "commands/work_area.h"
#include "platform/config.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atdecode";

namespace {

// The order of the modem's text, which is not that of the record.
constexpr char kCellFormat[] = "%d %64s %16s %10s %20s %d %d %20s";
constexpr FieldRef kCellFields[] = {
    AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, istat),       AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, lalpha_oper),
    AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, salpha_oper), AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, numeric_oper),
    AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, net_type),    AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, iRsrp),
    AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, iQrxlevmin),  AT_FIELD_REF(AT_BGLTEPLMN_CELL_T, sub_net_type),
};
static_assert(ScanFits(kCellFormat, kCellFields));

constexpr size_t kCellsAt = offsetof(AT_BGLTEPLMN_RES_PARA_T, cells);
static_assert(sizeof(AT_BGLTEPLMN_RES_PARA_T) <= kListRecordSize);

void LogText(const char* text) {
    AT_LOG(LOG_INFO, "pResLine->strResParas:%s\n", text);
}

// Lays the answer out as g_paras_list. A list that begins with an empty field is an empty list.
int SplitCells(char* text) {
    g_paras_list.nCount = 0;
    if (text[0] != ',' && (text[0] == '\0' || text[1] != ',')) {
        PreProc_Res_ParaLineEx(text);
        LogText(text);
        PreProcCopsRes_Res_ParaLine(text);
        LogText(text);
        PreProc_Res_ParaList(&g_paras_list, text);
        LogText(text);
    }
    AT_LOG(LOG_INFO, "stParasList.nCount:%d\n", g_paras_list.nCount);
    return g_paras_list.nCount;
}

AT_BGLTEPLMN_CELL_T CellAt(int index) {
    AT_BGLTEPLMN_CELL_T cell;
    memcpy(&cell, g_list_record + kCellsAt + static_cast<size_t>(index) * sizeof cell, sizeof cell);
    return cell;
}

void ReadCells(int count) {
    memset(g_list_record, 0, sizeof(AT_BGLTEPLMN_RES_PARA_T));
    PutInteger(g_list_record, 0, count);
    for (int i = 0; i < count; ++i) {
        ScanLine(g_paras_list.strParasLine[i], kCellFormat, kCellFields,
                 g_list_record + kCellsAt + static_cast<size_t>(i) * sizeof(AT_BGLTEPLMN_CELL_T));
        const AT_BGLTEPLMN_CELL_T cell = CellAt(i);
        AT_LOG(LOG_INFO,
               "istat:%d\nlalpha_oper:%s\nsalpha_oper:%s\nnumeric_oper:%s\nnet_type:%s\niRsrp:%d\n"
               "iQrxlevmin:%d\nsub_net_type:%s\n",
               cell.istat, cell.lalpha_oper, cell.salpha_oper, cell.numeric_oper, cell.net_type, cell.iRsrp,
               cell.iQrxlevmin, cell.sub_net_type);
    }
}

// The stronger cell wins. One that is not stronger wins by asking for no more power than the best so far; it
// then counts as strong as that one. Since the best starts at 0, negative powers never win.
bool ChooseCell(int count, AT_BGLTEPLMN_CELL_T& best) {
    bool found = false;
    memset(&best, 0, sizeof best);
    for (int i = 0; i < count; ++i) {
        AT_BGLTEPLMN_CELL_T cell = CellAt(i);
        if (cell.istat == 0 || cell.istat == 3 || cell.iRsrp < cell.iQrxlevmin) continue;
        if (cell.iRsrp <= best.iRsrp) {
            cell.iRsrp = best.iRsrp;
            if (cell.iRsrp == 0 || cell.iQrxlevmin > best.iQrxlevmin) continue;
        }
        best = cell;
        found = true;
        AT_LOG(LOG_INFO, "Have better cell\n");
    }
    return found;
}

void SetMode(const AT_BGLTEPLMN_CELL_T& cell) {
    if (strcmp(cell.sub_net_type, "0") == 0) {
        cfg_set("lte_diag_mode", "Tdd_Only");
        AT_LOG(LOG_INFO, "Set lte_diag_mode Tdd_Only\n");
    } else if (strcmp(cell.sub_net_type, "1") == 0) {
        cfg_set("lte_diag_mode", "Fdd_Pref");
        AT_LOG(LOG_INFO, "Set lte_diag_mode Fdd_Pref\n");
    } else {
        AT_LOG(LOG_INFO, "Get the better cell's subAct error:%s\n", cell.sub_net_type);
    }
}

}  // namespace

int Parse_BGLTEPLMN_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr || pRes->ucCmdType != AT_CMD_TYPE_EXEC) return 0;
    AT_LOG(LOG_EMERG, "diag 4g networkrk: Parse_BGLTEPLMN_Res begin\n");
    const int count = SplitCells(pResLine->strResParas);
    ReadCells(count);
    cfg_set("lte_diag_mode", ConfigText("lte_select_mode"));
    if (count == 0) {
        AT_LOG(LOG_EMERG, "No lte cell info searched\n");
        return 0;
    }
    AT_BGLTEPLMN_CELL_T best;
    if (ChooseCell(count, best))
        SetMode(best);
    else
        AT_LOG(LOG_INFO, "Need not to switch the lte network mode!");
    AT_LOG(LOG_INFO, "diag 4g networkrk: Parse_BGLTEPLMN_Res end\n");
    return 0;
}

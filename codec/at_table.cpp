#include "codec/at_table.h"

#include <string.h>

#include <utility>

#include "commands/all_rows.h"
#include "commands/row_codec.h"

namespace {

// +CIMI stands in the table twice. Only the first row is ever found; the second keeps the order of the table
// as it is.
constexpr uint16_t kTwiceInTheTable = 0x0111;

template <const auto&... Lists>
struct Assemble {
    static_assert((std::size(Lists) + ...) == kAtCmdTableSize,
                  "the table has another number of rows than stated");

    using Table = std::array<AT_CMD_ITEM_T, kAtCmdTableSize>;

    // How many rows have this position, this id or this name.
    struct Seen {
        int position = 0;
        int id = 0;
        int name = 0;
    };
    template <size_t N>
    static constexpr void Count(const Row (&list)[N], const Row& wanted, Seen& seen) {
        for (const Row& row : list) {
            seen.position += row.position == wanted.position;
            seen.id += row.id == wanted.id;
            seen.name += SameText(row.name, wanted.name);
        }
    }
    static constexpr unsigned FaultOfUniqueness(const Row& row) {
        Seen seen;
        (Count(Lists, row, seen), ...);
        const int wanted = row.id == kTwiceInTheTable ? 2 : 1;
        return seen.position == 1 && seen.id == wanted && seen.name == wanted ? 0U : unsigned{kFaultTwice};
    }

    template <const auto& List, size_t Index>
    static constexpr void Place(Table& table) {
        constexpr unsigned faults = RowFaults(List[Index], kAtCmdTableSize) | FaultOfUniqueness(List[Index]);
        if constexpr (Accept<RowName(List[Index].name), faults>::kOk) {
            AT_CMD_ITEM_T& item = table[List[Index].position - 1];
            item.usCmdID = List[Index].id;
            for (size_t i = 0; List[Index].name[i] != '\0'; ++i)
                item.acCmdName[i] = List[Index].name[i];
            item.pfnMakeCmd = RowCodec<List, Index>::EncodeFunction();
            item.pfnParseRes = RowCodec<List, Index>::DecodeFunction();
        }
    }
    template <const auto& List, size_t... Index>
    static constexpr void PlaceAll(Table& table, std::index_sequence<Index...>) {
        (Place<List, Index>(table), ...);
    }
    static constexpr Table Make() {
        Table table = {};
        (PlaceAll<Lists>(table, std::make_index_sequence<std::size(Lists)>()), ...);
        return table;
    }
};

constexpr auto kTable = WithAllRows<Assemble>::Make();

}  // namespace

#define AT_ROW(n) kTable[n]
#define AT_TEN_ROWS(n)                                                                                   \
    AT_ROW(n), AT_ROW(n + 1), AT_ROW(n + 2), AT_ROW(n + 3), AT_ROW(n + 4), AT_ROW(n + 5), AT_ROW(n + 6), \
        AT_ROW(n + 7), AT_ROW(n + 8), AT_ROW(n + 9)

const AT_CMD_ITEM_T g_astAtCmdTable[kAtCmdTableSize] = {
    AT_TEN_ROWS(0),   AT_TEN_ROWS(10),  AT_TEN_ROWS(20),  AT_TEN_ROWS(30),  AT_TEN_ROWS(40),
    AT_TEN_ROWS(50),  AT_TEN_ROWS(60),  AT_TEN_ROWS(70),  AT_TEN_ROWS(80),  AT_TEN_ROWS(90),
    AT_TEN_ROWS(100), AT_TEN_ROWS(110), AT_TEN_ROWS(120), AT_TEN_ROWS(130), AT_TEN_ROWS(140),
    AT_TEN_ROWS(150), AT_TEN_ROWS(160), AT_TEN_ROWS(170), AT_ROW(180),      AT_ROW(181),
    AT_ROW(182),      AT_ROW(183),      AT_ROW(184),      AT_ROW(185)};

namespace {

// The rows in the order of their ids and of their names; rows that share one stand in table order, so that
// the first row is the one that is found.
using Order = std::array<uint8_t, kAtCmdTableSize>;

template <typename Before>
consteval Order Sorted(Before before) {
    Order order{};
    for (size_t used = 0; used < order.size(); ++used) {
        size_t place = used;
        while (place > 0 && before(kTable[used], kTable[order[place - 1]])) {
            order[place] = order[place - 1];
            --place;
        }
        order[place] = static_cast<uint8_t>(used);
    }
    return order;
}

constexpr Order kById =
    Sorted([](const AT_CMD_ITEM_T& a, const AT_CMD_ITEM_T& b) { return a.usCmdID < b.usCmdID; });

consteval bool NameBefore(const AT_CMD_ITEM_T& a, const AT_CMD_ITEM_T& b) {
    size_t at = 0;
    while (a.acCmdName[at] != '\0' && a.acCmdName[at] == b.acCmdName[at])
        ++at;
    return static_cast<unsigned char>(a.acCmdName[at]) < static_cast<unsigned char>(b.acCmdName[at]);
}
constexpr Order kByName = Sorted(NameBefore);

// The first of the sorted rows that does not stand before what is looked for; the number of rows for none.
template <typename Before>
size_t LowerBound(const Order& order, Before before) {
    size_t low = 0;
    size_t high = order.size();
    while (low < high) {
        const size_t middle = (low + high) / 2;
        if (before(g_astAtCmdTable[order[middle]]))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

}  // namespace

int Bk_Find_Cmd_By_Id(uint16_t id, int* index) {
    if (index == nullptr) return 1;
    const size_t found = LowerBound(kById, [id](const AT_CMD_ITEM_T& row) { return row.usCmdID < id; });
    if (found == kById.size() || g_astAtCmdTable[kById[found]].usCmdID != id) return 1;
    *index = kById[found];
    return 0;
}

int Bk_Find_Cmd_By_Name(int* pIndex, const char* name) {
    if (pIndex == nullptr || name == nullptr) return -1;
    const size_t found =
        LowerBound(kByName, [name](const AT_CMD_ITEM_T& row) { return strcmp(row.acCmdName, name) < 0; });
    if (found == kByName.size() || strcmp(g_astAtCmdTable[kByName[found]].acCmdName, name) != 0) return -1;
    *pIndex = kByName[found];
    return 0;
}

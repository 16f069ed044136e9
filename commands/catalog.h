#ifndef AT_COMMANDS_CATALOG_H
#define AT_COMMANDS_CATALOG_H

#include "commands/all_rows.h"

// The whole table with everything that is known about each command, in search order, for tools, documents and
// checks. The functions of a row are left out, so that a tool need not link the daemon.

template <const auto&... Lists>
struct CatalogOf {
    static constexpr size_t kSize = (std::size(Lists) + ...);
    static constexpr std::array<Row, kSize> Make() {
        std::array<Row, kSize> rows = {};
        (Take(rows, Lists), ...);
        return rows;
    }
    template <size_t N>
    static constexpr void Take(std::array<Row, kSize>& rows, const Row (&list)[N]) {
        for (const Row& row : list) {
            Row& copy = rows[static_cast<size_t>(row.position - 1)];
            copy = row;
            copy.encode.function = {};
            copy.decode.function = {};
        }
    }
};

inline constexpr auto kCatalog = WithAllRows<CatalogOf>::Make();

// The first row with this id or this exact name ("+CSQ"); null when there is none.
constexpr const Row* CatalogRow(uint16_t id) {
    for (const Row& row : kCatalog)
        if (row.id == id) return &row;
    return nullptr;
}
constexpr const Row* CatalogRow(const char* name) {
    for (const Row& row : kCatalog)
        if (SameText(row.name, name)) return &row;
    return nullptr;
}

#endif

// SPDX-License-Identifier: MIT
#include "store/LastNumber.h"

#include "platform/posix/Sqlite.h"
#include "store/StoreProblem.h"

namespace kel {

Int32 lastNumber(const std::filesystem::path& store, const Origin& origin)
{
    constexpr int kPatience = 1000;
    Int32 last = 0;
    onStore(store, [&] {
        SqliteDatabase database(store, SqliteDatabase::Mode::Shared, kPatience);
        SqliteStatement query(database, "SELECT sheets FROM batch JOIN store ON batch.store = store.identity "
                                        "WHERE station = ? AND reader = ? AND name = ?");
        SqliteStatement::Run row(query);
        row.text(origin.station).text(origin.reader).text(origin.batch);
        if (row.next())
            last = static_cast<Int32>(row.numberAt(0));
    });
    return last;
}

} // namespace kel

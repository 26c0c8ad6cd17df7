#include "pims-engine/organizer_contents.h"

#include <algorithm>

#include "common/store_error.h"
#include "pims-engine/organizer_rows.h"

namespace pim_store {

// How many neighbouring indexes are read along with a record: few enough that the first one comes at once, enough that
// a walk over all makes few queries.
static constexpr int32_t batch_size = 64;

void organizer_contents::load(connection& file)
{
    statement records = file.prepare("SELECT record_index, type FROM record ORDER BY type, record_index");
    while (records.step()) {
        const int32_t index = records.integer(0), type = records.integer(1);
        if (index < 1 || index > ORG_RECORD_MAX || !is_record_type(type)) throw store_failure(store_error::corrupt);
        indices(type).push_back(index);
        slot(index).type = type;
    }
}

organizer_contents::batch organizer_contents::fetch(connection& file, int32_t index) const
{
    const int32_t first = index / batch_size * batch_size;
    batch fetched = records_between(file, first, first + batch_size - 1);
    const auto is_wanted = [index](const auto& record) { return record.first == index; };
    if (std::ranges::none_of(fetched, is_wanted)) throw store_failure(store_error::corrupt);
    return fetched;
}

void organizer_contents::adopt(batch&& fetched)
{
    for (auto& [index, record] : fetched) slot(index).record = std::move(record);
}

int32_t organizer_contents::lowest_free_index() const
{
    int32_t index = 1;
    while (has(index, any_type)) ++index;
    return index;
}

void organizer_contents::add(int32_t index, int32_t type, kept_record&& record)
{
    std::vector<int32_t>& list = indices(type);
    list.insert(std::ranges::lower_bound(list, index), index);
    slot(index) = {type, std::move(record)};
}

void organizer_contents::remove(int32_t index)
{
    std::vector<int32_t>& list = indices(slot(index).type);
    list.erase(std::ranges::lower_bound(list, index));
    slot(index) = {};
}

} // namespace pim_store

// organizer_contents.h: what a process keeps of organizer.db3 in memory.
#pragma once

#include <org_db_service.h>

#include <utility>
#include <vector>

#include "common/connection.h"
#include "pims-engine/organizer_record.h"

namespace pim_store {

// Stands where a record type may, and means both.
inline constexpr int32_t any_type = 0;

class organizer_contents {
public:
    // ---- What snapshot_store asks for
    using batch = std::vector<std::pair<int32_t, kept_record>>;

    void load(connection& file);
    batch fetch(connection& file, int32_t index) const;
    void adopt(batch&& fetched);

    // ---- Records
    // The indexes of the records of one type, ascending.
    const std::vector<int32_t>& indices(int32_t type) const { return type == ORG_TYPE_EVENT ? events_ : todos_; }

    bool has(int32_t index, int32_t type) const
    {
        if (index < 1 || index > ORG_RECORD_MAX) return false;
        const int32_t found = slot(index).type;
        return found != no_record && (type == any_type || type == found);
    }

    // The one after the limit when all are taken.
    int32_t lowest_free_index() const;

    // The record of an index that is there; false while it is not loaded.
    const kept_record& record(int32_t index) const { return slot(index).record; }

    void add(int32_t index, int32_t type, kept_record&& record);
    void replace(int32_t index, kept_record&& record) { slot(index).record = std::move(record); }
    void remove(int32_t index);

private:
    static constexpr int32_t no_record = 0;

    struct record_slot {
        int32_t type = no_record;
        kept_record record;
    };

    const record_slot& slot(int32_t index) const { return slots_[static_cast<size_t>(index)]; }
    record_slot& slot(int32_t index) { return slots_[static_cast<size_t>(index)]; }
    std::vector<int32_t>& indices(int32_t type) { return type == ORG_TYPE_EVENT ? events_ : todos_; }

    std::vector<int32_t> events_, todos_;                                           // Ascending.
    std::vector<record_slot> slots_ = std::vector<record_slot>(ORG_RECORD_MAX + 1); // By index.
};

} // namespace pim_store

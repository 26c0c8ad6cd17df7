// organizer_rows.h: events and to-dos as rows of the file.
#pragma once

#include <org_db_service.h>

#include <optional>
#include <utility>
#include <vector>

#include "common/connection.h"
#include "pims-engine/organizer_record.h"

namespace pim_store {

inline bool is_record_type(int type)
{
    return type == ORG_TYPE_EVENT || type == ORG_TYPE_TODO;
}

// The index for a new record: the one after the highest ever used, and when that one passes the limit, the lowest free
// one: `known_free` or, without that, what looking through the rows finds. The limit is the end of the date-ordered
// walks while there is room before it, and then that of the store. Fails with FULL.
int32_t next_record_index(connection& file, std::optional<int32_t> known_free);

// Writes the row of a record under record.index, which must be free, or already there. False when the record that is to
// be replaced is not there. The record's text pointers are not looked at.
void insert_record(connection& file, int32_t type, const org_full_record& record, const record_texts& texts);
bool replace_record(connection& file, const org_full_record& record, const record_texts& texts);

// The records from `first` to `last`, with their indexes.
std::vector<std::pair<int32_t, kept_record>> records_between(connection& file, int32_t first, int32_t last);

} // namespace pim_store

#include "pims-engine/organizer_rows.h"

#include "common/byte_runs.h"
#include "common/date_text.h"

namespace pim_store {

// ---- Indexes --------------------------------------------------------------------------------------------------------

// Date-ordered walks fetch the positions 0..1999 and see no record beyond.
static constexpr int32_t last_walked_index = 1999;

static int32_t lowest_free_index(connection& file)
{
    int32_t lowest_free = 1;
    statement taken = file.prepare("SELECT record_index FROM record ORDER BY record_index");
    while (taken.step() && taken.integer(0) == lowest_free) ++lowest_free;
    return lowest_free;
}

int32_t next_record_index(connection& file, std::optional<int32_t> known_free)
{
    const int32_t highest = file.number(
        "SELECT max(coalesce((SELECT max(record_index) FROM record), 0), "
        "coalesce((SELECT max(highest) FROM retired_index), 0))");
    for (const int32_t limit : {last_walked_index, int32_t{ORG_RECORD_MAX}}) {
        if (highest < limit) return highest + 1;
        if (!known_free) known_free = lowest_free_index(file);
        if (*known_free <= limit) return *known_free;
    }
    throw store_failure(store_error::full);
}

// ---- Writing --------------------------------------------------------------------------------------------------------

static std::string text_of(const org_date_time& date)
{
    return text_of_time(date.time);
}

// The date as its column alone makes it.
static org_date_time date_of(std::string_view text)
{
    return {.time = time_of_text(text), .gmtoff = 0, .zone = 0};
}

// The record as the columns alone make it.
static org_full_record plain_record(const org_full_record& record)
{
    org_full_record plain = {};
    plain.index = record.index;
    plain.kind = record.kind;
    plain.start_date_time = date_of(text_of(record.start_date_time));
    plain.end_date_time = date_of(text_of(record.end_date_time));
    plain.alarm_time = date_of(text_of(record.alarm_time));
    plain.repeat_term = record.repeat_term;
    plain.repeat_interval = record.repeat_interval;
    plain.repeat_end_or_due = date_of(text_of(record.repeat_end_or_due));
    plain.last_modified_time = date_of(text_of(record.last_modified_time));
    plain.completed = record.completed;
    plain.priority = record.priority;
    return plain;
}

// Binds ?1 to ?19, the columns that an update replaces and its key before them.
static void bind_record(statement& target, const org_full_record& record, const record_texts& texts)
{
    const auto& [summary, description, location, text_172, text_340, text_344, text_348] = texts;
    target.bind(record.index, record.kind, summary, description, location);
    target.bind(text_of(record.start_date_time), text_of(record.end_date_time), text_of(record.alarm_time));
    target.bind(record.repeat_term, record.repeat_interval, text_of(record.repeat_end_or_due));
    target.bind(text_of(record.last_modified_time), record.completed, record.priority);
    target.bind(text_172, text_340, text_344, text_348);
    target.bind(byte_view(byte_runs(image_of(record), image_of(plain_record(record)))));
}

void insert_record(connection& file, int32_t type, const org_full_record& record, const record_texts& texts)
{
    statement insertion = file.prepare(
        "INSERT INTO record (record_index, kind, summary, description, location, start_date_time, end_date_time, "
        "alarm_time, repeat_term, repeat_interval, repeat_end_or_due, last_modified_time, completed, priority, "
        "text_172, text_340, text_344, text_348, rest, type) "
        "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18, ?19, ?20)");
    bind_record(insertion, record, texts);
    insertion.bind(type).run();
}

bool replace_record(connection& file, const org_full_record& record, const record_texts& texts)
{
    statement change = file.prepare(
        "UPDATE record SET kind = ?2, summary = ?3, description = ?4, location = ?5, start_date_time = ?6, "
        "end_date_time = ?7, alarm_time = ?8, repeat_term = ?9, repeat_interval = ?10, repeat_end_or_due = ?11, "
        "last_modified_time = ?12, completed = ?13, priority = ?14, text_172 = ?15, text_340 = ?16, text_344 = ?17, "
        "text_348 = ?18, rest = ?19 WHERE record_index = ?1");
    bind_record(change, record, texts);
    return change.run() > 0;
}

// ---- Reading --------------------------------------------------------------------------------------------------------

static kept_record record_of_row(const statement& row)
{
    org_full_record record = {};
    record.index = row.integer(0);
    record.kind = row.integer(1);
    record.start_date_time = date_of(row.text(2));
    record.end_date_time = date_of(row.text(3));
    record.alarm_time = date_of(row.text(4));
    record.repeat_term = row.integer(5);
    record.repeat_interval = row.integer(6);
    record.repeat_end_or_due = date_of(row.text(7));
    record.last_modified_time = date_of(row.text(8));
    record.completed = row.integer(9);
    record.priority = row.integer(10);

    record_image image = image_of(record);
    apply_byte_runs(row.bytes(11), image);
    set_image(record, image);
    record.index = row.integer(0); // Whatever a file says about the rest.

    record_texts texts;
    for (size_t i = 0; i < text_count; ++i) texts[i] = row.text(12 + static_cast<int>(i));
    return kept_record(record, texts);
}

std::vector<std::pair<int32_t, kept_record>> records_between(connection& file, int32_t first, int32_t last)
{
    statement rows = file.prepare(
        "SELECT record_index, kind, start_date_time, end_date_time, alarm_time, repeat_term, repeat_interval, "
        "repeat_end_or_due, last_modified_time, completed, priority, rest, summary, description, location, text_172, "
        "text_340, text_344, text_348 FROM record WHERE record_index BETWEEN ?1 AND ?2");
    rows.bind(first, last);
    std::vector<std::pair<int32_t, kept_record>> records;
    while (rows.step()) records.emplace_back(rows.integer(0), record_of_row(rows));
    return records;
}

} // namespace pim_store

#include "raw_organizer.h"

#include "common/date_text.h"
#include "samples.h"

using pim_store::text_of_time;
using pim_store::time_of_text;

raw_organizer::raw_organizer(const std::filesystem::path& file)
    : database_(file),
      begin_(database_, "BEGIN IMMEDIATE"),
      commit_(database_, "COMMIT"),
      insert_(database_,
              "INSERT INTO record VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, "
              "?16, ?17, ?18, ?19, NULL)"),
      update_(database_,
              "UPDATE record SET kind = ?3, summary = ?4, description = ?5, location = ?6, "
              "start_date_time = ?7, end_date_time = ?8, alarm_time = ?9, repeat_term = ?10, "
              "repeat_interval = ?11, repeat_end_or_due = ?12, last_modified_time = ?13, completed = ?14, "
              "priority = ?15, text_172 = ?16, text_340 = ?17, text_344 = ?18, text_348 = ?19, rest = NULL "
              "WHERE record_index = ?1 AND type = ?2"),
      remove_(database_, "DELETE FROM record WHERE record_index = ?1"),
      get_(database_,
           "SELECT kind, summary, description, location, start_date_time, end_date_time, alarm_time, "
           "repeat_term, repeat_interval, repeat_end_or_due, last_modified_time, completed, priority, "
           "text_172, text_340, text_344, text_348, rest FROM record WHERE record_index = ?1"),
      list_(database_, "SELECT record_index FROM record WHERE type = ?1 ORDER BY record_index")
{}

// Binds ?1 to ?19, the first of which SQLite chooses when it is NULL, and runs the statement.
template <typename Index>
static void run_with(raw_statement& statement, Index index, int32_t type, const org_full_record& item)
{
    const std::string start = text_of_time(item.start_date_time.time), end = text_of_time(item.end_date_time.time),
                      alarm = text_of_time(item.alarm_time.time), due = text_of_time(item.repeat_end_or_due.time),
                      modified = text_of_time(item.last_modified_time.time);
    statement
        .bind(index, type, item.kind, item.summary, item.description, item.location, std::string_view(start),
              std::string_view(end), std::string_view(alarm), item.repeat_term, item.repeat_interval,
              std::string_view(due), std::string_view(modified), item.completed, item.priority, item.text_172,
              item.text_340, item.text_344, item.text_348)
        .run();
}

void raw_organizer::fill(int count)
{
    in_transaction(begin_, commit_, [&] {
        database_.run("DELETE FROM record; UPDATE retired_index SET highest = 0");
        for (int32_t number = 1; number <= count; ++number)
            run_with(insert_, number, sample_item_type(number), sample_item(number));
    });
    database_.run("PRAGMA wal_checkpoint(TRUNCATE)");
}

int32_t raw_organizer::add(int32_t type, const org_full_record& item)
{
    in_transaction(begin_, commit_, [&] { run_with(insert_, nullptr, type, item); });
    return static_cast<int32_t>(sqlite3_last_insert_rowid(database_.handle()));
}

void raw_organizer::update(int32_t index, const org_full_record& item)
{
    const int32_t type = item.kind == ORG_KIND_EVENT ? ORG_TYPE_EVENT : ORG_TYPE_TODO;
    in_transaction(begin_, commit_, [&] { run_with(update_, index, type, item); });
    demand(sqlite3_changes(database_.handle()) == 1, "a record to update");
}

void raw_organizer::remove(int32_t index)
{
    in_transaction(begin_, commit_, [&] { remove_.bind(index).run(); });
    demand(sqlite3_changes(database_.handle()) == 1, "a record to remove");
}

void raw_organizer::get(int32_t index, org_full_record& item)
{
    demand(get_.bind(index).step(), "a record to get");
    const auto copy_out = [&](char* buffer, int column) {
        const std::string_view text = get_.text(column);
        std::memcpy(buffer, text.data(), text.size() + 1); // SQLite terminates its texts.
    };
    item.index = index;
    item.kind = get_.integer(0);
    copy_out(item.summary, 1);
    copy_out(item.description, 2);
    copy_out(item.location, 3);
    item.start_date_time.time = time_of_text(get_.text(4));
    item.end_date_time.time = time_of_text(get_.text(5));
    item.alarm_time.time = time_of_text(get_.text(6));
    item.repeat_term = get_.integer(7);
    item.repeat_interval = get_.integer(8);
    item.repeat_end_or_due.time = time_of_text(get_.text(9));
    item.last_modified_time.time = time_of_text(get_.text(10));
    item.completed = get_.integer(11);
    item.priority = get_.integer(12);
    copy_out(item.text_172, 13);
    copy_out(item.text_340, 14);
    copy_out(item.text_344, 15);
    copy_out(item.text_348, 16);
    demand(get_.is_null(17), "a record that its columns say all of");
    get_.reset();
}

int32_t raw_organizer::list(int32_t type, std::span<int32_t> indices)
{
    size_t count = 0;
    list_.bind(type);
    while (list_.step()) indices[count++] = list_.integer(0);
    return static_cast<int32_t>(count);
}

// What a person, another version or another program finds in organizer.db3.

#include <stdlib.h>
#include <string.h>

#include "organizer_fixture.h"

using namespace store_test;
using testing::ElementsAre;
using testing::IsEmpty;

class OrganizerFile : public OrganizerStore {
protected:
    // The first row of a query, as texts.
    std::vector<std::string> row(const std::string& query) const
    {
        SQLite::Database database = shell();
        SQLite::Statement statement(database, query);
        std::vector<std::string> values;
        if (!statement.executeStep()) return values;
        for (int column = 0; column < statement.getColumnCount(); ++column)
            values.push_back(statement.getColumn(column).getString());
        return values;
    }
};

static constexpr broken_down_time april_1985 = {50, 20, 23, 12, 3, 85, 5, 101, 0};
static constexpr broken_down_time july_2024 = {0, 30, 9, 1, 6, 124, 1, 182, 1};

TEST_F(OrganizerFile, AnEventIsReadableInTheShell)
{
    entry event("Review");
    event.set_text(organizer_texts[1], "Bring the plan");
    event.set_text(organizer_texts[2], "Room 5");
    event.kind = ORG_KIND_EVENT;
    event.start_date_time.time = april_1985;
    event.end_date_time.time = april_1985;
    event.alarm_time.time = july_2024;
    event.repeat_term = ORG_REPEAT_WEEKLY;
    event.repeat_interval = 3;
    event.repeat_end_or_due.time = july_2024;
    event.last_modified_time.time = april_1985;
    add(ORG_TYPE_EVENT, event);
    EXPECT_THAT(
        row("SELECT summary, description, location, start_date_time, end_date_time, alarm_time, repeat_term, "
            "repeat_interval, repeat_end, last_modified_time FROM event"),
        ElementsAre("Review", "Bring the plan", "Room 5", "1985-04-12 23:20:50", "1985-04-12 23:20:50",
                    "2024-07-01 09:30:00 DST", "weekly", "3", "2024-07-01 09:30:00 DST", "1985-04-12 23:20:50"));
    EXPECT_THAT(row("SELECT type, kind, repeat_term, rest IS NULL FROM record"), ElementsAre("8", "1", "2", "1"));
    EXPECT_THAT(row("SELECT * FROM todo"), IsEmpty());
}

TEST_F(OrganizerFile, AToDoIsReadableInTheShell)
{
    entry todo("Call Ada");
    todo.kind = ORG_KIND_TODO;
    todo.repeat_end_or_due.time = july_2024;
    todo.end_date_time.time = april_1985;
    todo.completed = 1;
    todo.priority = ORG_PRIORITY_HIGH;
    add(ORG_TYPE_TODO, todo);
    EXPECT_THAT(row("SELECT summary, due, completed, completion_date, priority, last_modified_time FROM todo"),
                ElementsAre("Call Ada", "2024-07-01 09:30:00 DST", "1", "1985-04-12 23:20:50", "high", ""));
    EXPECT_THAT(row("SELECT type, kind, priority, rest IS NULL FROM record"), ElementsAre("9", "2", "2", "1"));
    EXPECT_THAT(row("SELECT * FROM event"), IsEmpty());
}

TEST_F(OrganizerFile, BytesWithoutAColumnStandInTheRestAlone)
{
    entry record("x");
    const int plain = add(ORG_TYPE_EVENT, record);
    record.opaque_352[10] = 1;
    const int opaque = add(ORG_TYPE_EVENT, record);
    EXPECT_THAT(row("SELECT rest IS NULL FROM record WHERE record_index = " + std::to_string(plain)), ElementsAre("1"));
    // 364 bytes to leave, one to set: the record as it lies on the device, without its seven pointers.
    EXPECT_THAT(row("SELECT hex(rest) FROM record WHERE record_index = " + std::to_string(opaque)),
                ElementsAre("6C01010001"));
}

TEST_F(OrganizerFile, WhatAPersonEntersIsReadAtOnce)
{
    add(ORG_TYPE_EVENT, "before");
    EXPECT_STREQ(get(1).summary, "before");
    shell().exec("UPDATE record SET summary = 'after', start_date_time = '1985-04-12 23:20:50', priority = 2");
    const entry changed = get(1);
    EXPECT_STREQ(changed.summary, "after");
    EXPECT_EQ(memcmp(&changed.start_date_time.time, &april_1985, sizeof april_1985), 0);
    EXPECT_EQ(changed.priority, 2);

    shell().exec("INSERT INTO record (record_index, type, kind, summary) VALUES (7, 9, 2, 'by hand')");
    EXPECT_THAT(indices(ORG_TYPE_TODO), ElementsAre(7));
    EXPECT_STREQ(get(7).summary, "by hand");
    shell().exec("DELETE FROM record WHERE record_index = 7");
    EXPECT_EQ(code_of_get(7), ORG_ERR_RECORD_NOT_FOUND);
    EXPECT_EQ(add(ORG_TYPE_TODO, "x"), 8);
}

TEST_F(OrganizerFile, RefusesWhatNoRecordCanHold)
{
    add(ORG_TYPE_EVENT, "x");
    for (const char* statement :
         {"UPDATE record SET record_index = 0", "UPDATE record SET record_index = 10001", "UPDATE record SET type = 7",
          "UPDATE record SET summary = NULL", "INSERT INTO record (record_index) VALUES (5)"})
        EXPECT_THROW(shell().exec(statement), SQLite::Exception) << statement;
    for (const organizer_text& text : organizer_texts) {
        const auto set = [&](size_t size) {
            shell().exec("UPDATE record SET " + std::string(text.name) + " = '" + std::string(size, 'x') + "'");
        };
        EXPECT_NO_THROW(set(text.limit)) << text.name;
        EXPECT_THROW(set(text.limit + 1), SQLite::Exception) << text.name;
        EXPECT_EQ(strlen(get(1).*text.pointer), text.limit) << text.name;
    }
}

TEST_F(OrganizerFile, ALongerTextThanAnyBufferHoldsIsCut)
{
    add(ORG_TYPE_EVENT, "x");
    SQLite::Database other = shell();
    other.exec("PRAGMA ignore_check_constraints = ON");
    for (const organizer_text& text : organizer_texts) {
        other.exec("UPDATE record SET " + std::string(text.name) + " = '" + std::string(5000, 'y') + "'");
        EXPECT_EQ(get(1).*text.pointer, std::string(text.limit, 'y')) << text.name;
    }
    other.exec("UPDATE record SET summary = CAST(x'61620063' AS TEXT)");
    EXPECT_STREQ(get(1).summary, "ab");
}

TEST_F(OrganizerFile, IsForItsUserAlone)
{
    add(ORG_TYPE_EVENT, "x");
    EXPECT_EQ(mode_of(store_home()), 0700U);
    EXPECT_EQ(mode_of(file()), 0600U);
}

TEST_F(OrganizerFile, NamesItsKindAndItsVersion)
{
    add(ORG_TYPE_EVENT, "x");
    SQLite::Database database = shell();
    EXPECT_EQ(database.execAndGet("PRAGMA application_id").getInt(), 0x50494d4f);
    EXPECT_EQ(database.execAndGet("PRAGMA user_version").getInt(), 1);
    EXPECT_EQ(database.execAndGet("PRAGMA journal_mode").getString(), "wal");
    EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
}

// Each frozen schema is upgraded and compared with a fresh one.
TEST_F(OrganizerFile, OfEveryOlderVersionIsUpgraded)
{
    add(ORG_TYPE_EVENT, "x");
    SQLite::Database fresh = shell();
    const int newest = fresh.execAndGet("PRAGMA user_version").getInt();
    const auto expected = schema_of(fresh);
    ASSERT_THAT(expected, testing::Not(IsEmpty()));

    for (int version = 1; version <= newest; ++version) {
        const fs::path frozen = fs::path(STORE_TEST_DATA) / ("organizer_schema_" + std::to_string(version) + ".sql");
        const fs::path home = room() / std::to_string(version);
        fs::create_directory(home);
        {
            SQLite::Database old(home / "organizer.db3", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            old.exec(content_of(frozen));
            old.exec("PRAGMA application_id = 0x50494d4f; PRAGMA user_version = " + std::to_string(version));
            old.exec("INSERT INTO record (record_index, type, summary) VALUES (5, 9, 'Call Ada')");
        }
        SQLite::Database upgraded(home / "organizer.db3");
        // The folder of this process stands; a file of the old version takes the place of its own.
        for (const char* suffix : {"", "-wal", "-shm"}) fs::remove(file().string() + suffix);
        fs::copy_file(home / "organizer.db3", file());
        const auto is_kept = [] { return get(5).summary == std::string("Call Ada") ? 0 : 1; };
        EXPECT_EQ(in_tidy_child(is_kept), 0) << version;
        SQLite::Database opened = shell();
        EXPECT_EQ(opened.execAndGet("PRAGMA user_version").getInt(), newest) << version;
        EXPECT_EQ(schema_of(opened), expected) << version;
    }
}

TEST_F(OrganizerFile, IsMadeByManyAtOnce)
{
    std::vector<std::unique_ptr<child_process>> children;
    for (int i = 0; i < 8; ++i)
        children.push_back(
            std::make_unique<child_process>([i] { return add(both_types[i % 2], "x") > 0 && !HasFailure() ? 0 : 1; }));
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
    EXPECT_EQ(count(ORG_TYPE_EVENT), 4);
    EXPECT_EQ(count(ORG_TYPE_TODO), 4);
}

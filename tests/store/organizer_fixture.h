// organizer_fixture.h: events and to-dos for the tests of the organizer store.
#pragma once

#include <org_db_service.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "store_test.h"

namespace store_test {
// One program may have both fixtures, whose functions bear the same names.
inline namespace organizer {

inline constexpr int both_types[] = {ORG_TYPE_EVENT, ORG_TYPE_TODO};

struct organizer_text {
    const char* name;
    char* org_full_record::*pointer;
    size_t limit;
};
extern const std::vector<organizer_text> organizer_texts;

// A record with a buffer attached for every text, as a connection of the library prepares one.
class entry : public org_full_record {
public:
    entry();
    explicit entry(std::string_view summary_text);
    entry(const entry& other);
    entry& operator=(const entry&) = delete;
    ~entry() { org_db_service_free_full_record(this, nullptr); }

    void set_text(const organizer_text& text, std::string_view value);
};

// Where a record holds bytes that are no pointers.
struct byte_range {
    size_t start;
    size_t size;
};
extern const std::vector<byte_range> ranges_outside_pointers;

// A record with random bytes wherever a record holds bytes, and random texts.
entry random_entry(std::mt19937& random);

// A record whose every field says `number`, so that a mixture of two of them shows.
entry uniform_entry(int number);
// The number such a record says, -1 when its fields disagree.
int number_of(const org_full_record& uniform);

// What differs between two records outside the pointers and the index, texts included; empty when nothing does.
std::string difference(const org_full_record& one, const org_full_record& other);

// ---- The C functions, with their results as values. Each expects success.

int add(int type, org_full_record& record);
int add(int type, std::string_view summary);
entry get(int index);
void update(int index, org_full_record& record);
void remove_record(int index);
int count(int type);
std::vector<int> indices(int type);
void connect();
void disconnect();

// ---- The code that a call fails with, 0 when it succeeds.

template <typename Call>
int code_of(Call&& call)
{
    int error = 0;
    return call(&error) ? 0 : error;
}
int code_of_get(int index);
int code_of_add(int type = ORG_TYPE_EVENT);

class OrganizerStore : public StoreTest {
protected:
    fs::path file() const { return store_home() / "organizer.db3"; }

    // Another connection to the file, as the sqlite3 shell has one.
    SQLite::Database shell() const { return {file(), SQLite::OPEN_READWRITE, 5000}; }

    // A store with some events in it, closed again, so that all of it is in one file.
    void make_closed_store(int events) const;
};

} // namespace organizer
} // namespace store_test

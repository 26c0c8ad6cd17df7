#include "bench_folder.h"

#include <cstdio>
#include <cstdlib>

#include "contact_db_service.h"
#include "org_db_service.h"
#include "raw_contacts.h"
#include "raw_organizer.h"

namespace fs = std::filesystem;

void give_up(const char* what)
{
    std::fprintf(stderr, "benchmark: failed: %s\n", what);
    std::exit(1);
}

bench_folder::bench_folder()
{
    std::string pattern = fs::absolute("stores-XXXXXX").string();
    demand(mkdtemp(pattern.data()) != nullptr, "a folder in the current one");
    folder_ = pattern;
    setenv("JSR75_PIM_HOME", (folder_ / "store").c_str(), 1);
    setenv("JSR75_PIM_TRACE", "warn", 0);
    setenv("TZ", "UTC", 1); // Unset, each date conversion asks the file system for the zone.
}

bench_folder::~bench_folder()
{
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void bench_folder::fill(int count) const
{
    int found = 0, error = 0;
    demand(contact_db_service_contact_get_count(0, &found, &error) != 0, "the contact store");
    demand(org_db_service_get_record_count(0, ORG_TYPE_EVENT, &found, &error) != 0, "the organizer store");
    raw_contacts(contacts()).fill(count);
    raw_organizer(organizer()).fill(count);
}

void bench_folder::copy() const
{
    fs::copy_file(contacts(), contacts_copy(), fs::copy_options::overwrite_existing);
    fs::copy_file(organizer(), organizer_copy(), fs::copy_options::overwrite_existing);
}

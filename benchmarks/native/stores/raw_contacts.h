// raw_contacts.h: contacts in a file like the store's, with SQLite called by hand.
#ifndef JSR75_PIM_BENCHMARKS_RAW_CONTACTS_H
#define JSR75_PIM_BENCHMARKS_RAW_CONTACTS_H

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "contact_db_service.h"
#include "raw_sqlite.h"

// What the samples leave empty, the columns `rest`, is written as NULL and demanded to be so.
class raw_contacts {
public:
    explicit raw_contacts(const std::filesystem::path& file);

    // Makes the file hold the samples 1 to `count`, each under its number, and their groups.
    void fill(int count);

    // Each durable once it returns.
    int32_t add(const contact_record& contact);
    void update(int32_t recindex, const contact_record& contact);
    void remove(int32_t recindex);

    // Fills a zeroed record; contact_db_service_contact_free() releases its blocks.
    void get(int32_t recindex, contact_record& contact);
    int32_t list(std::span<int32_t> indices);
    int32_t members(int32_t key_index, std::span<int32_t> indices);

    // A contact with a text that contains `match`, whatever the case of ASCII letters; -1 when there is none.
    int32_t search(const std::string& match);

private:
    int32_t insert(int32_t recindex, const contact_record& contact);
    void insert_belongings(int32_t recindex, const contact_record& contact);

    raw_database database_;
    raw_statement begin_, commit_, insert_, update_, remove_, insert_phone_, insert_email_, insert_address_,
        insert_homepage_, insert_membership_, remove_phones_, remove_emails_, remove_addresses_, remove_homepages_,
        remove_memberships_, get_, get_phones_, get_emails_, get_addresses_, get_homepages_, get_memberships_, list_,
        members_, search_;
};

#endif

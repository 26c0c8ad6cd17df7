// samples.h: the records that are stored, fetched and searched: as many texts as people fill in. None that a search
// looks at is empty, since an empty text contains any match string.
#ifndef JSR75_PIM_BENCHMARKS_SAMPLES_H
#define JSR75_PIM_BENCHMARKS_SAMPLES_H

#include <cstdint>
#include <string>
#include <utility>

#include "contact_db_service.h"
#include "org_db_service.h"

inline constexpr int32_t SAMPLE_GROUPS = 5;

// A record whose blocks go with it.
class owned_contact : public contact_record {
public:
    owned_contact() : contact_record{} {}
    owned_contact(owned_contact&& other) noexcept : contact_record(std::exchange<contact_record>(other, {})) {}
    owned_contact& operator=(owned_contact&&) = delete;
    ~owned_contact() { contact_db_service_contact_free(this); }
};

// Two phones, an e-mail address, an address, a homepage, a note, a birthday and a group. Versions differ in most texts
// and in no length.
owned_contact sample_contact(int number, int version = 0);

// In no sample but that of this number.
std::string only_in_contact(int number);

// A record with all its text buffers, which go with it.
class owned_item : public org_full_record {
public:
    owned_item();
    owned_item(owned_item&& other) noexcept : org_full_record(std::exchange<org_full_record>(other, {})) {}
    owned_item& operator=(owned_item&&) = delete;
    ~owned_item();
};

// Even numbers are events, odd ones to-dos.
int32_t sample_item_type(int number);
owned_item sample_item(int number, int version = 0);

// Whether two records say the same; where their blocks lie does not matter.
bool same_contact(const contact_record& one, const contact_record& other);
bool same_item(const org_full_record& one, const org_full_record& other);

#endif

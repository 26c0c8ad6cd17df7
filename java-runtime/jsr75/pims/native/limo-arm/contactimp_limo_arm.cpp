#include "contactimp_limo_arm.h"

#include <algorithm>

#include "contactrecord.h"
#include "pimutil.h"

// The preferred value is the first one of the type that every kind of entry numbers 0.
template <typename Entry>
static int32_t first_of_type_0(std::span<Entry> all)
{
    const auto found = std::find_if(all.begin(), all.end(), [](const Entry& entry) { return entry.type == 0; });
    return found == all.end() ? -1 : static_cast<int32_t>(found - all.begin());
}

static int32_t preferred_index(const contact_record& contact, int32_t field)
{
    switch (field) {
    case CONTACT_ADDR: return first_of_type_0(addresses(contact));
    case CONTACT_EMAIL: return first_of_type_0(emails(contact));
    case CONTACT_TEL: return first_of_type_0(phones(contact));
    case CONTACT_URL: return first_of_type_0(homepages(contact));
    default: return -1;
    }
}

int32_t ContactImp_getPreferredIndexN(int32_t, int32_t recindex, int32_t field)
{
    PIM_TRACE(TRACE_STEP, "%s, recindex = %d\n", __func__, recindex);
    return read_contact<int32_t>(trace_here(), recindex, {.opening = -1, .fetching = -1, .closing = -1},
                                 [&](const contact_record& contact) { return preferred_index(contact, field); });
}

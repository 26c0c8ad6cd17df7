#include "contact-db/packed_contact.h"

#include <gmock/gmock.h>
#include <string.h>

#include "contact-db/contact_blocks.h"

using namespace pim_store;
using testing::Lt;

// A contact as an address book has it: two phones, two e-mails, an address, a homepage and a short note.
struct typical_contact {
    contact_record record = {};
    contact_phone phones[2] = {};
    contact_email emails[2] = {};
    contact_address address = {};
    char note[100] = {};

    typical_contact()
    {
        strcpy(record.name_info.last_name, "Lovelace");
        strcpy(record.name_info.first_name, "Ada Augusta");
        strcpy(record.job_title, "Programmer");
        strcpy(record.company_name, "Analytical Engines Ltd");
        strcpy(record.homepage_info[0].homepage, "https://example.org/~ada");
        record.birthday = {0, 0, 0, 10, 11, -85, 0, 343, 0};
        record.save_time = {1, 2, 3, 4, 5, 126, 4, 154, 0};
        record.membership[3] = 1;
        for (contact_phone& phone : phones) strcpy(phone.number, "+44 20 7946 0958");
        for (contact_email& email : emails) strcpy(email.email, "ada.lovelace@engines.example.org");
        strcpy(address.full_text, "St James's Square 12 London SW1Y 4JH United Kingdom ");
        strcpy(address.street, "St James's Square 12");
        strcpy(address.city, "London");
        strcpy(address.postal_code, "SW1Y 4JH");
        strcpy(address.country, "United Kingdom");
        memset(note, 'n', sizeof note - 1);
        record.phone_info = phones;
        record.phone_count = 2;
        record.email_info = emails;
        record.email_count = 2;
        record.address_info = &address;
        record.postal_count = 1;
        record.note = note;
        record.note_size = sizeof note;
    }
};

TEST(PackedContact, ComesBackWhole)
{
    const typical_contact typical;
    contact_record unpacked = {};
    packed_contact(typical.record).unpack(unpacked);
    EXPECT_EQ(image_of(unpacked), image_of(typical.record));
    EXPECT_EQ(memcmp(unpacked.phone_info, typical.phones, sizeof typical.phones), 0);
    EXPECT_EQ(memcmp(unpacked.email_info, typical.emails, sizeof typical.emails), 0);
    EXPECT_EQ(memcmp(unpacked.address_info, &typical.address, sizeof typical.address), 0);
    EXPECT_STREQ(unpacked.note, typical.note);
    release_blocks(unpacked);
}

TEST(PackedContact, TakesLessThanAKibibyte)
{
    // Ten thousand of them, with the lists beside them, are to stay below 12 MiB.
    EXPECT_THAT(packed_contact(typical_contact().record).size(), Lt(1024u));
}

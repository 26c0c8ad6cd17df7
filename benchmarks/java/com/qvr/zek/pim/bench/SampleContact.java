package com.qvr.zek.pim.bench;

/** The values of contact {@code number}, from 0. None is empty: an empty text would match any search. */
final class SampleContact {
    static final String[] CATEGORIES = {"Family", "Friends", "Work", "Club"};

    private static final long DAY_MS = 86_400_000L;

    final int number;
    final String[] name;
    final String nickname;
    final String organisation;
    final String title;
    final String note;
    final String homePhone;
    final String workPhone;
    final String email;
    final String page;
    final String[] address;
    final long birthday;
    final String category;

    SampleContact(int number) {
        this.number = number;
        name = new String[] {"Family" + number, "Given" + number};
        nickname = "Nick" + number;
        organisation = "Company " + number % 100;
        title = "Title " + number % 10;
        note = "A note about contact " + number + ".";
        homePhone = "+49 30 " + number;
        workPhone = "+49 40 " + number;
        email = email(number);
        page = "http://example.org/~" + number;
        address = new String[] {"PO box " + number, "Floor " + number % 9, "Street " + number, "City " + number % 50,
            "Region " + number % 16, Integer.toString(10_000 + number), "Country"};
        birthday = number * DAY_MS;
        category = CATEGORIES[number % CATEGORIES.length];
    }

    /** The contact that a store keeps as record {@code recindex}. */
    static SampleContact at(int recindex) {
        return new SampleContact(recindex - 1);
    }

    int recindex() {
        return number + 1;
    }

    static String email(int number) {
        return "contact" + number + "@example.org";
    }

    /** The eleven fields that a program reads of a contact, names and addresses in the order of their elements. */
    Object[] fields() {
        return new Object[] {name, nickname, organisation, title, note, homePhone, workPhone, email, page, address,
            birthday};
    }
}

package com.qvr.zek.pim.demo;

import static com.qvr.zek.pim.PIMCodes.Contact.*;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes;
import ezvcard.VCard;
import ezvcard.io.text.VCardReader;
import ezvcard.parameter.AddressType;
import ezvcard.parameter.EmailType;
import ezvcard.parameter.TelephoneType;
import ezvcard.property.Address;
import ezvcard.property.Birthday;
import ezvcard.property.Email;
import ezvcard.property.FormattedName;
import ezvcard.property.Note;
import ezvcard.property.Organization;
import ezvcard.property.Revision;
import ezvcard.property.StructuredName;
import ezvcard.property.Telephone;
import ezvcard.property.Title;
import ezvcard.property.Url;
import ezvcard.util.Utf8Reader;
import java.io.File;
import java.io.FileNotFoundException;
import java.io.IOException;
import java.util.ArrayList;
import java.util.Date;
import java.util.HashSet;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;
import java.util.stream.Collectors;
import javax.microedition.pim.PIMException;

/** Reads a vCard file and commits every card that the store does not hold yet. */
final class VcardImport {
    private static final int LIST = PIMCodes.List.CONTACT;

    /** The most bytes each kind of text may have; a name of 65 could be stored but not read back. */
    private static final int NAME_BYTES = 64;
    private static final int NICKNAME_BYTES = 196;
    private static final int LINE_BYTES = 65;
    private static final int MAIL_BYTES = 129;
    private static final int PHONE_BYTES = 41;
    private static final int URL_BYTES = 257;
    private static final int[] ADDRESS_BYTES = {65, 128, 128, 128, 128, 40, 64};
    private static final int CATEGORY_BYTES = 63;

    private static final int MOST_CONTACTS = 10_000;

    /** Dates are kept in 32-bit seconds. */
    private static final long EARLIEST_MS = Integer.MIN_VALUE * 1000L;
    private static final long LATEST_MS = Integer.MAX_VALUE * 1000L;

    private final Device device;
    private final Set<String> stored = new HashSet<>();
    private final ImportResult result = new ImportResult();

    VcardImport(Device device) {
        this.device = device;
        for (int recindex : device.records(LIST)) {
            stored.add(new ContactCard(device, recindex).identity());
        }
    }

    ImportResult run(File file, Progress progress) throws DemoException {
        try (VCardReader reader = new VCardReader(new Utf8Reader(file))) {
            int number = 0;
            for (VCard card = reader.readNext(); card != null; card = reader.readNext()) {
                take(card, "card " + ++number);
                progress.reached(number);
            }
            if (number == 0) {
                throw new DemoException(file + " holds no vCard");
            }
            return result;
        } catch (FileNotFoundException e) {
            throw new DemoException("cannot open the vCard file: " + e.getMessage());
        } catch (IOException e) {
            throw new DemoException("cannot read " + file + ": " + e.getMessage());
        } finally {
            progress.done();
        }
    }

    private void take(VCard card, String number) {
        CardRequest request = new CardRequest(card, number);
        if (request.problem != null) {
            result.refused.add(request.who + ": " + request.problem);
            return;
        }
        if (stored.contains(request.identity())) {
            result.alreadyStored++;
            return;
        }
        request.addCategories();
        try {
            if (request.commit.commit(device.items, LIST, PIMCodes.NO_RECORD) == PIMCodes.NO_RECORD) {
                boolean full = device.records(LIST).size() >= MOST_CONTACTS;
                result.refused.add(request.who + (full ? ": the list is full" : ": the store did not take it"));
                return;
            }
        } catch (PIMException e) {
            result.refused.add(request.who + ": " + e.getMessage());
            return;
        }
        stored.add(request.identity());
        result.added++;
        result.leftOut.addAll(request.leftOut);
    }

    /** One card on its way into a commit request, with what is wrong with it. */
    private final class CardRequest {
        final VCard card;
        final String who;
        final CommitRequest commit = new CommitRequest();
        final List<String> leftOut = new ArrayList<>();
        String problem;

        private String family = "";
        private String given = "";
        private String organisation = "";
        private final List<String> phones = new ArrayList<>();
        private final List<String> mails = new ArrayList<>();

        CardRequest(VCard card, String number) {
            this.card = card;
            addName();
            String name = (given + " " + family).trim();
            who = number + (name.isEmpty() ? "" : " (" + name + ")");
            addPhones();
            addMails();
            addAddresses();
            addPages();
            addSingleTexts();
            addDates();
            if (name.isEmpty() && organisation.isEmpty() && phones.isEmpty() && mails.isEmpty()) {
                problem = "it names neither a person nor a company, phone or e-mail address";
            }
        }

        String identity() {
            return ContactCard.identity(family, given, organisation, phones, mails);
        }

        private void addName() {
            StructuredName name = card.getStructuredName();
            FormattedName formatted = card.getFormattedName();
            if (name != null) {
                family = orEmpty(name.getFamily());
                given = orEmpty(name.getGiven());
            }
            if (family.isEmpty() && given.isEmpty() && formatted != null) {
                family = orEmpty(formatted.getValue());
            }
            if (fits("family name", family, NAME_BYTES) && fits("given name", given, NAME_BYTES)) {
                commit.string(NAME, 0, ATTR_NONE, family, given);
            }
        }

        private void addPhones() {
            for (Telephone phone : upTo(card.getTelephoneNumbers(), TEL)) {
                String number = phone.getUri() != null ? phone.getUri().getNumber() : phone.getText();
                if (isGiven(number) && fits("phone number", number, PHONE_BYTES)) {
                    phones.add(number);
                    commit.string(TEL, phones.size() - 1, phoneAttribute(phone.getTypes()), number);
                }
            }
        }

        private void addMails() {
            for (Email mail : upTo(card.getEmails(), EMAIL)) {
                String address = mail.getValue();
                if (isGiven(address) && fits("e-mail address", address, MAIL_BYTES)) {
                    mails.add(address);
                    boolean business = mail.getTypes().contains(EmailType.WORK);
                    commit.string(EMAIL, mails.size() - 1, business ? ATTR_EMAIL_BUSINESS : ATTR_EMAIL_PRIVATE, address);
                }
            }
        }

        private void addAddresses() {
            int index = 0;
            for (Address address : upTo(card.getAddresses(), ADDR)) {
                String[] parts = new String[ADDRESS_BYTES.length];
                parts[ADDR_POBOX] = orEmpty(address.getPoBox());
                parts[ADDR_EXTRA] = orEmpty(address.getExtendedAddressFull());
                parts[ADDR_STREET] = orEmpty(address.getStreetAddressFull());
                parts[ADDR_LOCALITY] = orEmpty(address.getLocality());
                parts[ADDR_REGION] = orEmpty(address.getRegion());
                parts[ADDR_POSTALCODE] = orEmpty(address.getPostalCode());
                parts[ADDR_COUNTRY] = orEmpty(address.getCountry());
                for (int element = 0; element < parts.length; element++) {
                    fits("address part", parts[element], ADDRESS_BYTES[element]);
                }
                List<AddressType> types = address.getTypes();
                int attribute = types.contains(AddressType.WORK) ? ATTR_WORK
                        : types.contains(AddressType.HOME) ? ATTR_HOME : ATTR_NONE;
                commit.string(ADDR, index++, attribute, parts);
            }
        }

        private void addPages() {
            int index = 0;
            for (Url page : upTo(card.getUrls(), URL)) {
                if (isGiven(page.getValue()) && fits("home page", page.getValue(), URL_BYTES)) {
                    boolean business = "work".equalsIgnoreCase(page.getType());
                    commit.string(URL, index++, business ? ATTR_HOMEPAGE_BUSINESS : ATTR_HOMEPAGE_PRIVATE,
                            page.getValue());
                }
            }
        }

        private void addSingleTexts() {
            Organization company = card.getOrganization();
            if (company != null) {
                organisation = String.join(", ", company.getValues());
                single("company", ORG, organisation, LINE_BYTES);
            }
            Title title = card.getTitles().isEmpty() ? null : card.getTitles().get(0);
            if (title != null) {
                single("job title", TITLE, title.getValue(), LINE_BYTES);
            }
            if (card.getNickname() != null) {
                single("nickname", NICKNAME, String.join(", ", card.getNickname().getValues()), NICKNAME_BYTES);
            }
            single("note", NOTE, card.getNotes().stream().map(Note::getValue).filter(VcardImport::isGiven)
                    .collect(Collectors.joining("\n")), Integer.MAX_VALUE);
        }

        private void single(String what, int field, String text, int limit) {
            if (isGiven(text) && fits(what, text, limit)) {
                commit.string(field, text);
            }
        }

        private void addDates() {
            Birthday birthday = card.getBirthday();
            if (birthday != null) {
                if (birthday.getDate() == null) {
                    leftOut.add(who + ": the birthday is no full date");
                } else {
                    date("birthday", BIRTHDAY, birthday.getDate());
                }
            }
            Revision revision = card.getRevision();
            if (revision != null && revision.getValue() != null) {
                date("revision", REVISION, revision.getValue());
            }
        }

        private void date(String what, int field, Date date) {
            if (date.getTime() < EARLIEST_MS || date.getTime() > LATEST_MS) {
                leftOut.add(who + ": the " + what + " lies outside 1901 to 2038");
            } else {
                commit.number(field, date.getTime());
            }
        }

        /** Puts the contact into its categories; those the list does not have yet are added to it first. */
        void addCategories() {
            Set<String> names = new LinkedHashSet<>();
            card.getCategoriesList().forEach(categories -> names.addAll(categories.getValues()));
            for (String name : names) {
                if (CommitRequest.modifiedUtf8(name).length > CATEGORY_BYTES) {
                    leftOut.add(who + ": the category " + name + " is longer than " + CATEGORY_BYTES + " bytes");
                    continue;
                }
                if (!device.lists.isCategoryN(LIST, Device.HANDLE, name)) {
                    device.lists.addCategoryN(LIST, Device.HANDLE, name);
                }
                if (device.lists.isCategoryN(LIST, Device.HANDLE, name)) {
                    commit.category(name);
                } else {
                    leftOut.add(who + ": the list takes no category " + name);
                }
            }
        }

        /** The values of a field that the library has room for. */
        private <T> List<T> upTo(List<T> values, int field) {
            int most = device.lists.maxValuesN(LIST, Device.HANDLE, field);
            if (values.size() <= most) {
                return values;
            }
            leftOut.add(who + ": " + (values.size() - most) + " of " + values.size() + " values of "
                    + device.lists.getFieldLabelN(LIST, Device.HANDLE, field));
            return values.subList(0, most);
        }

        private boolean fits(String what, String text, int limit) {
            int size = CommitRequest.modifiedUtf8(text).length;
            if (size > limit) {
                problem = "the " + what + " has " + size + " bytes, " + limit + " is the most";
            }
            return size <= limit;
        }
    }

    private static int phoneAttribute(List<TelephoneType> types) {
        boolean work = types.contains(TelephoneType.WORK);
        if (types.contains(TelephoneType.CELL)) {
            return work ? ATTR_MOBILE_BUSINESS : ATTR_MOBILE_PRIVATE;
        }
        if (types.contains(TelephoneType.FAX)) {
            return ATTR_FAX;
        }
        if (types.contains(TelephoneType.PAGER)) {
            return ATTR_PAGER;
        }
        if (types.contains(TelephoneType.VIDEO)) {
            return ATTR_VIDEO_CALL;
        }
        if (types.contains(TelephoneType.MSG)) {
            return ATTR_VOICE_MAIL;
        }
        if (types.contains(TelephoneType.ISDN)) {
            return work ? ATTR_LINE_BUSINESS : ATTR_LINE_PRIVATE;
        }
        if (work) {
            return ATTR_WORK;
        }
        return types.contains(TelephoneType.HOME) ? ATTR_HOME : ATTR_OTHER;
    }

    private static boolean isGiven(String text) {
        return text != null && !text.isEmpty();
    }

    private static String orEmpty(String text) {
        return text == null ? "" : text;
    }
}

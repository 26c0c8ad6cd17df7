package com.qvr.zek.pim.demo;

import static com.qvr.zek.pim.PIMCodes.Contact.*;

import com.qvr.zek.pim.PIMCodes;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.stream.Collectors;

/** One stored contact as the library reads it back. */
final class ContactCard {
    private static final int LIST = PIMCodes.List.CONTACT;

    /** A phone number, e-mail address, home page or postal address with the label of its attribute. */
    static final class Labelled {
        final String label;
        final String text;

        Labelled(String label, String text) {
            this.label = label;
            this.text = text;
        }
    }

    final int recindex;
    final String family;
    final String given;
    final String nickname;
    final String organisation;
    final String title;
    final String note;
    final List<Labelled> phones;
    final List<Labelled> mails;
    final List<Labelled> pages;
    final List<Labelled> addresses;
    final Long birthday;
    final List<String> categories;

    ContactCard(Device device, int recindex) {
        this.recindex = recindex;
        String[] name = device.items.getStringArrayN(LIST, Device.HANDLE, recindex, NAME, 0);
        family = name[NAME_FAMILY];
        given = name[NAME_GIVEN];
        nickname = device.text(LIST, recindex, NICKNAME);
        organisation = device.text(LIST, recindex, ORG);
        title = device.text(LIST, recindex, TITLE);
        note = device.text(LIST, recindex, NOTE);
        phones = labelled(device, TEL);
        mails = labelled(device, EMAIL);
        pages = labelled(device, URL);
        addresses = addresses(device);
        birthday = device.date(LIST, recindex, BIRTHDAY);
        categories = Arrays.asList(device.items.getCategoriesN(LIST, Device.HANDLE, recindex));
    }

    String name() {
        return (given + " " + family).trim();
    }

    /** What tells this contact from others, for finding out whether a card is already stored. */
    String identity() {
        return identity(family, given, organisation, texts(phones), texts(mails));
    }

    static String identity(String family, String given, String organisation, List<String> phones, List<String> mails) {
        return String.join("\n", family, given, organisation, phones.toString(), mails.toString());
    }

    /** The texts that a search goes through, in its order, with the name of the field each belongs to. */
    List<Labelled> searchedTexts(Device device) {
        List<Labelled> texts = new ArrayList<>();
        texts.add(new Labelled("first name", given));
        texts.add(new Labelled("last name", family));
        for (int index = 0; index < addresses.size(); index++) {
            String[] parts = device.items.getStringArrayN(LIST, Device.HANDLE, recindex, ADDR, index);
            for (String part : parts) {
                texts.add(new Labelled("address", part));
            }
        }
        mails.forEach(mail -> texts.add(new Labelled("e-mail", mail.text)));
        if (!note.isEmpty()) {
            texts.add(new Labelled("note", note));
        }
        texts.add(new Labelled("company", organisation));
        phones.forEach(phone -> texts.add(new Labelled("phone", phone.text)));
        texts.add(new Labelled("job title", title));
        return texts;
    }

    private List<Labelled> labelled(Device device, int field) {
        List<Labelled> values = new ArrayList<>();
        for (int index = 0; index < device.lists.maxValuesN(LIST, Device.HANDLE, field); index++) {
            String text = device.items.getStringN(LIST, Device.HANDLE, recindex, field, index);
            if (text != null && !text.isEmpty()) {
                values.add(new Labelled(label(device, field, index), text));
            }
        }
        return values;
    }

    private List<Labelled> addresses(Device device) {
        List<Labelled> values = new ArrayList<>();
        for (int index = 0; index < device.lists.maxValuesN(LIST, Device.HANDLE, ADDR); index++) {
            String[] parts = device.items.getStringArrayN(LIST, Device.HANDLE, recindex, ADDR, index);
            String text = Arrays.stream(parts).filter(part -> !part.isEmpty()).collect(Collectors.joining(", "));
            if (!text.isEmpty()) {
                values.add(new Labelled(label(device, ADDR, index), text));
            }
        }
        return values;
    }

    private String label(Device device, int field, int index) {
        int attribute = device.items.getAttributesN(LIST, Device.HANDLE, recindex, field, index);
        return attribute == ATTR_NONE ? "" : device.lists.getAttributeLabelN(LIST, Device.HANDLE, attribute);
    }

    private static List<String> texts(List<Labelled> values) {
        return values.stream().map(value -> value.text).collect(Collectors.toList());
    }
}

package com.qvr.zek.pim.demo;

import com.qvr.zek.pim.ContactImpl;
import com.qvr.zek.pim.EventImpl;
import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMImpl;
import com.qvr.zek.pim.PIMItemImpl;
import com.qvr.zek.pim.PIMListImpl;
import com.qvr.zek.pim.ToDoListImpl;
import java.util.ArrayList;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Set;
import java.util.function.IntUnaryOperator;

/** The native objects of the three lists, and the walks over them. */
final class Device {
    /** The native side takes a handle everywhere and uses it nowhere. */
    static final int HANDLE = 0;

    final PIMImpl pim = new PIMImpl();
    final PIMListImpl lists = new PIMListImpl();
    final PIMItemImpl items = new PIMItemImpl();
    final ContactImpl contacts = new ContactImpl();
    final EventImpl events = new EventImpl();
    final ToDoListImpl todoList = new ToDoListImpl();

    String listName(int listtype) {
        return pim.listPIMListsN(listtype)[0];
    }

    List<Integer> records(int listtype) {
        return walk(last -> lists.nextRecordN(listtype, HANDLE, last));
    }

    /** The contacts of a category, or those in none when {@code category} is null. */
    List<Integer> contactsIn(String category) {
        return walk(last -> lists.nextRecordInCategoryN(PIMCodes.List.CONTACT, HANDLE, last, category));
    }

    List<Integer> recordsMatching(int listtype, String text) {
        return walk(last -> lists.nextRecordWithMatchStrN(listtype, HANDLE, last, text));
    }

    /** The to-dos with a due date, earliest first. */
    List<Integer> todosByDueDate() {
        List<Integer> found = new ArrayList<>();
        long reached = 0;
        while (true) {
            int[] next = todoList.nextSortedToDoN(HANDLE, PIMCodes.ToDo.DUE, reached);
            if (next.length == 0) {
                return found;
            }
            for (int recindex : next) {
                found.add(recindex);
            }
            reached = items.getDateN(PIMCodes.List.TODO, HANDLE, next[0], PIMCodes.ToDo.DUE, 0);
        }
    }

    String text(int listtype, int recindex, int field) {
        String text = items.getStringN(listtype, HANDLE, recindex, field, 0);
        return text == null ? "" : text;
    }

    /** A date in milliseconds, or null when the item has none. */
    Long date(int listtype, int recindex, int field) {
        return items.countValuesN(listtype, HANDLE, recindex, field) > 0
                ? items.getDateN(listtype, HANDLE, recindex, field, 0) : null;
    }

    /** A walk begins again when its last record was deleted meanwhile; what comes a second time ends it here. */
    private static List<Integer> walk(IntUnaryOperator next) {
        Set<Integer> found = new LinkedHashSet<>();
        int recindex = next.applyAsInt(PIMCodes.NO_RECORD);
        while (recindex != PIMCodes.NO_RECORD && found.add(recindex)) {
            recindex = next.applyAsInt(recindex);
        }
        return new ArrayList<>(found);
    }
}

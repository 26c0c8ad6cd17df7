package com.qvr.zek.pim.test;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.ContactImpl;
import com.qvr.zek.pim.EventImpl;
import com.qvr.zek.pim.EventListImpl;
import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMImpl;
import com.qvr.zek.pim.PIMItemImpl;
import com.qvr.zek.pim.PIMListImpl;
import com.qvr.zek.pim.ToDoListImpl;
import java.util.ArrayList;
import java.util.List;
import java.util.function.IntUnaryOperator;
import javax.microedition.pim.PIMException;
import org.junit.jupiter.api.BeforeEach;

/** A test on the process's own stores, which every test finds empty. */
abstract class StoreTest {
    static final int CONTACT = PIMCodes.List.CONTACT;
    static final int EVENT = PIMCodes.List.EVENT;
    static final int TODO = PIMCodes.List.TODO;
    static final int[] LIST_TYPES = {CONTACT, EVENT, TODO};

    /** The native side takes a handle everywhere and must not look at it. */
    static final int HANDLE = 4711;

    /** Handed out by no test's store. */
    static final int NO_SUCH_RECORD = 9999;

    static final PIMImpl PIM = new PIMImpl();
    static final PIMListImpl LISTS = new PIMListImpl();
    static final PIMItemImpl ITEMS = new PIMItemImpl();
    static final ContactImpl CONTACTS = new ContactImpl();
    static final EventListImpl EVENT_LIST = new EventListImpl();
    static final EventImpl EVENTS = new EventImpl();
    static final ToDoListImpl TODO_LIST = new ToDoListImpl();

    @BeforeEach
    void emptyTheStores() {
        for (int listtype : LIST_TYPES) {
            for (int recindex : records(listtype)) {
                LISTS.removeItemN(listtype, HANDLE, recindex);
            }
        }
        for (String category : LISTS.getCategoriesN(CONTACT, HANDLE)) {
            LISTS.deleteCategoryN(CONTACT, HANDLE, category, false);
        }
        for (int listtype : LIST_TYPES) {
            if (LISTS.nextRecordN(listtype, HANDLE, -1) != -1) {
                throw new IllegalStateException("list " + listtype + " could not be emptied");
            }
        }
    }

    static int add(int listtype, CommitRequest request) {
        int recindex = commit(listtype, -1, request);
        if (recindex < 1) {
            throw new IllegalStateException("commit refused: " + recindex);
        }
        return recindex;
    }

    static int commit(int listtype, int recindex, CommitRequest request) {
        try {
            return request.commit(ITEMS, listtype, recindex);
        } catch (PIMException e) {
            throw new IllegalStateException(e);
        }
    }

    static int addContact(String family, String given) {
        return add(CONTACT, contact(family, given));
    }

    static CommitRequest contact(String family, String given) {
        return new CommitRequest().string(PIMCodes.Contact.NAME, 0, 0, family, given);
    }

    static int addEvent(String summary) {
        return add(EVENT, new CommitRequest().string(PIMCodes.Event.SUMMARY, summary));
    }

    static int addToDo(String summary) {
        return add(TODO, new CommitRequest().string(PIMCodes.ToDo.SUMMARY, summary));
    }

    static List<Integer> records(int listtype) {
        return walk(last -> LISTS.nextRecordN(listtype, HANDLE, last));
    }

    static List<Integer> walk(IntUnaryOperator next) {
        List<Integer> found = new ArrayList<>();
        for (int recindex = next.applyAsInt(-1); recindex != -1; recindex = next.applyAsInt(recindex)) {
            if (found.contains(recindex)) {
                throw new IllegalStateException("the walk comes back to " + recindex);
            }
            found.add(recindex);
        }
        return found;
    }

    static String text(int listtype, int recindex, int field, int index) {
        return ITEMS.getStringN(listtype, HANDLE, recindex, field, index);
    }

    static String text(int listtype, int recindex, int field) {
        return text(listtype, recindex, field, 0);
    }

    static long date(int listtype, int recindex, int field) {
        return ITEMS.getDateN(listtype, HANDLE, recindex, field, 0);
    }

    static int count(int listtype, int recindex, int field) {
        return ITEMS.countValuesN(listtype, HANDLE, recindex, field);
    }

    static String repeat(char character, int times) {
        StringBuilder text = new StringBuilder();
        for (int i = 0; i < times; i++) {
            text.append(character);
        }
        return text.toString();
    }
}

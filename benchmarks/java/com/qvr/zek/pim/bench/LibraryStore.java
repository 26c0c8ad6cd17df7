package com.qvr.zek.pim.bench;

import static com.qvr.zek.pim.PIMCodes.Contact.*;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMItemImpl;
import com.qvr.zek.pim.PIMListImpl;
import com.qvr.zek.pim.ToDoListImpl;
import javax.microedition.pim.PIMException;

/** The store in {@code JSR75_PIM_HOME} through the natives. */
final class LibraryStore implements PimStore {
    private static final int LIST = PIMCodes.List.CONTACT;
    private static final int HANDLE = 0;

    private final PIMItemImpl item = new PIMItemImpl();
    private final PIMListImpl list = new PIMListImpl();
    private final ToDoListImpl todos = new ToDoListImpl();

    /** Makes the files, if there are none yet, and the categories. */
    void prepare() {
        for (String category : SampleContact.CATEGORIES) {
            list.addCategoryN(LIST, HANDLE, category);
        }
        list.nextRecordN(PIMCodes.List.TODO, HANDLE, PIMCodes.NO_RECORD);
    }

    @Override
    public int add(SampleContact contact) throws PIMException {
        return commit(PIMCodes.NO_RECORD, contact);
    }

    @Override
    public void update(int recindex, SampleContact contact) throws PIMException {
        commit(recindex, contact);
    }

    private int commit(int recindex, SampleContact contact) throws PIMException {
        int committed = new CommitRequest()
                .string(NAME, 0, ATTR_NONE, contact.name)
                .string(NICKNAME, contact.nickname)
                .string(ORG, contact.organisation)
                .string(TITLE, contact.title)
                .string(NOTE, contact.note)
                .string(TEL, 0, ATTR_HOME, contact.homePhone)
                .string(TEL, 1, ATTR_WORK, contact.workPhone)
                .string(EMAIL, contact.email)
                .string(URL, contact.page)
                .string(ADDR, 0, ATTR_HOME, contact.address)
                .number(BIRTHDAY, contact.birthday)
                .category(contact.category)
                .commit(item, LIST, recindex);
        if (committed < 1) {
            throw new IllegalStateException("contact " + contact.number + " was refused");
        }
        return committed;
    }

    @Override
    public int next(int recindex) {
        return list.nextRecordN(LIST, HANDLE, recindex);
    }

    @Override
    public int nextInCategory(int recindex, String category) {
        return list.nextRecordInCategoryN(LIST, HANDLE, recindex, category);
    }

    @Override
    public int search(String text) {
        return list.nextRecordWithMatchStrN(LIST, HANDLE, PIMCodes.NO_RECORD, text);
    }

    @Override
    public String email(int recindex) {
        return text(recindex, EMAIL, 0);
    }

    @Override
    public Object[] fields(int recindex) {
        return new Object[] {
            item.getStringArrayN(LIST, HANDLE, recindex, NAME, 0),
            text(recindex, NICKNAME, 0),
            text(recindex, ORG, 0),
            text(recindex, TITLE, 0),
            text(recindex, NOTE, 0),
            text(recindex, TEL, 0),
            text(recindex, TEL, 1),
            email(recindex),
            text(recindex, URL, 0),
            item.getStringArrayN(LIST, HANDLE, recindex, ADDR, 0),
            item.getDateN(LIST, HANDLE, recindex, BIRTHDAY, 0),
        };
    }

    private String text(int recindex, int field, int index) {
        return item.getStringN(LIST, HANDLE, recindex, field, index);
    }

    @Override
    public int[] nextToDos(long after) {
        return todos.nextSortedToDoN(HANDLE, PIMCodes.ToDo.DUE, after);
    }
}

package com.qvr.zek.pim.bench;

/** What a program does with its contacts and to-dos, through the library or written by hand. */
interface PimStore {
    /** Stores a contact durably. Returns its record index. */
    int add(SampleContact contact) throws Exception;

    /** Replaces a stored contact, durably. */
    void update(int recindex, SampleContact contact) throws Exception;

    /** The record after {@code recindex}, -1 at the end and, as an argument, before the first. */
    int next(int recindex) throws Exception;

    /** As {@link #next}, over the contacts of one category. */
    int nextInCategory(int recindex, String category) throws Exception;

    /** The first contact whose texts contain {@code text}, or -1. */
    int search(String text) throws Exception;

    String email(int recindex) throws Exception;

    /** What {@link SampleContact#fields} holds, each field read by itself. */
    Object[] fields(int recindex) throws Exception;

    /** The to-dos that share the earliest due date after {@code after}. */
    int[] nextToDos(long after) throws Exception;
}

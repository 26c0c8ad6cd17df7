package com.qvr.zek.pim.bench;

/** What is measured. */
final class Operation {
    static final String COMMIT = "commit of a new contact";
    static final String CHANGE = "commit of a change";
    static final String FIELD_READ = "field read";
    static final String WALK_STEP = "walk step";
    static final String WALK_AND_READ = "walk and read 11 fields";
    static final String CATEGORY_STEP = "category walk step";
    static final String SEARCH = "search, per contact";
    static final String TODO_STEP = "date-ordered to-do step";
    static final String TODO = "to-do of such a step";
    static final String MKTIME = "mktime of a due date";
    static final String TODO_BESIDE_MKTIME = "to-do beside its mktime";
    static final String COLD_START = "cold start";
    static final String RESIDENT_GROWTH = "growth in 100,000 calls";

    private Operation() {
    }
}

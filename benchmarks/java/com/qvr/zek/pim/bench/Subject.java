package com.qvr.zek.pim.bench;

/** Who is measured. */
final class Subject {
    /** The natives. */
    static final String LIBRARY = "library";

    /** The same work on the same tables, written by hand on JDBC. */
    static final String JDBC = "jdbc";

    /** As {@link #JDBC}, with one statement for all fields of a contact. */
    static final String JDBC_AT_ONCE = "jdbc, all fields at once";

    /** A folder of vCard files. */
    static final String VCARD = "vcard";

    /** A native call that does nothing. */
    static final String EMPTY = "empty";

    /** The C library alone. */
    static final String LIBC = "libc";

    private Subject() {
    }
}

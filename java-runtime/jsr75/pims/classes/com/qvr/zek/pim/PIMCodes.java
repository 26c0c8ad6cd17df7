package com.qvr.zek.pim;

/** The numbers that cross to the native side: those that JSR 75 publishes, and this platform's own beyond them. */
public final class PIMCodes {
    private PIMCodes() {
    }

    /** The record index that starts a walk and that ends it; as a target of a commit, a new record. */
    public static final int NO_RECORD = -1;

    /** List types, as in PIM. */
    public static final class List {
        public static final int CONTACT = 1;
        public static final int EVENT = 2;
        public static final int TODO = 3;

        private List() {
        }
    }

    /** Field, element and attribute codes of contacts, as in Contact; the extended attributes are this platform's. */
    public static final class Contact {
        public static final int ADDR = 100;
        public static final int BIRTHDAY = 101;
        public static final int CLASS = 102;
        public static final int EMAIL = 103;
        public static final int FORMATTED_ADDR = 104;
        public static final int FORMATTED_NAME = 105;
        public static final int NAME = 106;
        public static final int NICKNAME = 107;
        public static final int NOTE = 108;
        public static final int ORG = 109;
        public static final int PHOTO = 110;
        public static final int PHOTO_URL = 111;
        public static final int PUBLIC_KEY = 112;
        public static final int PUBLIC_KEY_STRING = 113;
        public static final int REVISION = 114;
        public static final int TEL = 115;
        public static final int TITLE = 116;
        public static final int UID = 117;
        public static final int URL = 118;

        public static final int ADDR_POBOX = 0;
        public static final int ADDR_EXTRA = 1;
        public static final int ADDR_STREET = 2;
        public static final int ADDR_LOCALITY = 3;
        public static final int ADDR_REGION = 4;
        public static final int ADDR_POSTALCODE = 5;
        public static final int ADDR_COUNTRY = 6;

        public static final int NAME_FAMILY = 0;
        public static final int NAME_GIVEN = 1;

        public static final int ATTR_NONE = 0;
        public static final int ATTR_ASST = 1;
        public static final int ATTR_AUTO = 2;
        public static final int ATTR_FAX = 4;
        public static final int ATTR_HOME = 8;
        public static final int ATTR_MOBILE = 16;
        public static final int ATTR_OTHER = 32;
        public static final int ATTR_PAGER = 64;
        public static final int ATTR_PREFERRED = 128;
        public static final int ATTR_SMS = 256;
        public static final int ATTR_WORK = 512;

        public static final int ATTR_MOBILE_PRIVATE = 0x1000001;
        public static final int ATTR_MOBILE_BUSINESS = 0x1000002;
        public static final int ATTR_LINE_PRIVATE = 0x1000003;
        public static final int ATTR_LINE_BUSINESS = 0x1000004;
        public static final int ATTR_VIDEO_CALL = 0x1000005;
        public static final int ATTR_VOICE_MAIL = 0x1000006;
        public static final int ATTR_SIM = 0x1000007;
        public static final int ATTR_EMAIL_PRIVATE = 0x1000008;
        public static final int ATTR_EMAIL_BUSINESS = 0x1000009;
        public static final int ATTR_HOMEPAGE_PRIVATE = 0x100000a;
        public static final int ATTR_HOMEPAGE_BUSINESS = 0x100000b;

        private Contact() {
        }
    }

    /** Field codes of events, as in Event. */
    public static final class Event {
        public static final int ALARM = 100;
        public static final int CLASS = 101;
        public static final int END = 102;
        public static final int LOCATION = 103;
        public static final int NOTE = 104;
        public static final int REVISION = 105;
        public static final int START = 106;
        public static final int SUMMARY = 107;
        public static final int UID = 108;

        private Event() {
        }
    }

    /** Field codes of to-dos, as in ToDo. */
    public static final class ToDo {
        public static final int CLASS = 100;
        public static final int COMPLETED = 101;
        public static final int COMPLETION_DATE = 102;
        public static final int DUE = 103;
        public static final int NOTE = 104;
        public static final int PRIORITY = 105;
        public static final int REVISION = 106;
        public static final int SUMMARY = 107;
        public static final int UID = 108;

        private ToDo() {
        }
    }

    /** How often an event repeats, as in RepeatRule. */
    public static final class RepeatFrequency {
        public static final int NONE = -1;
        public static final int DAILY = 16;
        public static final int WEEKLY = 17;
        public static final int MONTHLY = 18;
        public static final int YEARLY = 19;

        private RepeatFrequency() {
        }
    }

    /** The fields of a repeat rule as the native side numbers them: RepeatRule's field names in alphabetical order. */
    public static final class RepeatField {
        public static final int COUNT = 0;
        public static final int DAY_IN_MONTH = 1;
        public static final int DAY_IN_WEEK = 2;
        public static final int DAY_IN_YEAR = 3;
        public static final int END = 4;
        public static final int FREQUENCY = 5;
        public static final int INTERVAL = 6;
        public static final int MONTH_IN_YEAR = 7;
        public static final int WEEK_IN_MONTH = 8;

        private RepeatField() {
        }
    }
}

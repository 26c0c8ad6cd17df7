package javax.microedition.pim;

/** Something about a PIM list or item that the caller has to deal with; the reason code says what. */
public class PIMException extends Exception {
    public static final int FEATURE_NOT_SUPPORTED = 0;
    public static final int GENERAL_ERROR = 1;
    public static final int LIST_CLOSED = 2;
    public static final int LIST_NOT_ACCESSIBLE = 3;
    public static final int MAX_CATEGORIES_EXCEEDED = 4;
    public static final int UNSUPPORTED_VERSION = 5;
    public static final int UPDATE_ERROR = 6;

    private static final long serialVersionUID = 1L;

    private final int reason;

    public PIMException() {
        this(null, GENERAL_ERROR);
    }

    public PIMException(String detailMessage) {
        this(detailMessage, GENERAL_ERROR);
    }

    public PIMException(String detailMessage, int reason) {
        super(detailMessage);
        this.reason = reason;
    }

    /** One of the reason codes of this class. */
    public int getReason() {
        return reason;
    }
}

package javax.microedition.pim;

/** A field was used that the list of the item does not support. */
public class UnsupportedFieldException extends RuntimeException {
    private static final int NO_FIELD = -1;
    private static final long serialVersionUID = 1L;

    private final int field;

    public UnsupportedFieldException() {
        this(null, NO_FIELD);
    }

    public UnsupportedFieldException(String detailMessage) {
        this(detailMessage, NO_FIELD);
    }

    public UnsupportedFieldException(String detailMessage, int field) {
        super(detailMessage);
        this.field = field;
    }

    /** The code of the field, or -1 when none was named. */
    public int getField() {
        return field;
    }
}

package javax.microedition.pim;

/** A value was added to a field that already holds as many as it can. */
public class FieldFullException extends RuntimeException {
    private static final int NO_FIELD = -1;
    private static final long serialVersionUID = 1L;

    private final int field;

    public FieldFullException() {
        this(null, NO_FIELD);
    }

    public FieldFullException(String detailMessage) {
        this(detailMessage, NO_FIELD);
    }

    public FieldFullException(String detailMessage, int field) {
        super(detailMessage);
        this.field = field;
    }

    /** The code of the field, or -1 when none was named. */
    public int getField() {
        return field;
    }
}

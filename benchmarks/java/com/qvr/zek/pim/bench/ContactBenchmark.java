package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMItemImpl;
import com.qvr.zek.pim.PIMListImpl;
import java.util.Arrays;
import java.util.Locale;
import javax.microedition.pim.PIMException;

/**
 * What one call costs a Java program, at growing numbers of contacts:
 *
 * <pre>ContactBenchmark &lt;contacts&gt;...</pre>
 *
 * The store in {@code JSR75_PIM_HOME} is filled up to each number in turn; it must not hold more. Results go to
 * standard error: on standard output the library has its own to say.
 */
public final class ContactBenchmark {
    private static final int CONTACT = PIMCodes.List.CONTACT;
    private static final int HANDLE = 0;
    private static final int ROUNDS = 15;
    private static final long ROUND_NANOS = 100_000_000L;

    private final PIMListImpl list = new PIMListImpl();
    private final PIMItemImpl item = new PIMItemImpl();
    private int[] records = new int[0];

    /** Something that is done many times; each run says how many operations it was. */
    private interface Work {
        int run();
    }

    public static void main(String[] sizes) throws PIMException {
        ContactBenchmark benchmark = new ContactBenchmark();
        for (String size : sizes) {
            benchmark.fillUpTo(Integer.parseInt(size));
            benchmark.measure();
        }
    }

    private void fillUpTo(int wanted) throws PIMException {
        records = walk();
        if (records.length > wanted) {
            throw new IllegalStateException("the store holds " + records.length + " contacts, more than " + wanted);
        }
        int before = records.length;
        long started = System.nanoTime();
        for (int number = before; number < wanted; number++) {
            int recindex = contact(number).commit(item, CONTACT, PIMCodes.NO_RECORD);
            if (recindex < 1) {
                throw new IllegalStateException("contact " + number + " was refused");
            }
        }
        if (wanted > before) {
            double seconds = (System.nanoTime() - started) / 1e9;
            System.err.printf(Locale.ROOT, "%-28s %6d contacts  %10.1f commits/s, each durable%n", "commit", wanted,
                    (wanted - before) / seconds);
        }
        records = walk();
        if (records.length != wanted) {
            throw new IllegalStateException(records.length + " contacts instead of " + wanted);
        }
    }

    private static CommitRequest contact(int number) {
        return new CommitRequest()
                .string(PIMCodes.Contact.NAME, 0, 0, "Family" + number, "Given" + number)
                .string(PIMCodes.Contact.TEL, 0, PIMCodes.Contact.ATTR_HOME, "+49 30 " + number)
                .string(PIMCodes.Contact.TEL, 1, PIMCodes.Contact.ATTR_WORK, "+49 40 " + number)
                .string(PIMCodes.Contact.EMAIL, 0, 0, "contact" + number + "@example.org")
                .string(PIMCodes.Contact.ORG, "Company " + number % 100)
                .string(PIMCodes.Contact.TITLE, "Title " + number % 10)
                .string(PIMCodes.Contact.NOTE, "A note about contact " + number + ".")
                .number(PIMCodes.Contact.BIRTHDAY, number * 86_400_000L);
    }

    private int[] walk() {
        int[] found = new int[16];
        int count = 0;
        for (int recindex = next(PIMCodes.NO_RECORD); recindex != PIMCodes.NO_RECORD; recindex = next(recindex)) {
            if (count == found.length) {
                found = Arrays.copyOf(found, 2 * count);
            }
            found[count++] = recindex;
        }
        return Arrays.copyOf(found, count);
    }

    private int next(int recindex) {
        return list.nextRecordN(CONTACT, HANDLE, recindex);
    }

    private void measure() {
        report("walk step", () -> walk().length);
        report("field read (e-mail)", () -> {
            for (int recindex : records) {
                String email = item.getStringN(CONTACT, HANDLE, recindex, PIMCodes.Contact.EMAIL, 0);
                if (email.isEmpty()) {
                    throw new IllegalStateException("contact " + recindex + " has lost its e-mail address");
                }
            }
            return records.length;
        });
        // An operation is one contact looked at. No contact has an empty text, which would match anything.
        report("search without a match", () -> {
            int found = list.nextRecordWithMatchStrN(CONTACT, HANDLE, PIMCodes.NO_RECORD, "no contact says this");
            if (found != PIMCodes.NO_RECORD) {
                throw new IllegalStateException("contact " + found + " was found");
            }
            return records.length;
        });
    }

    /** Minimum, median and maximum of the rounds, after as many rounds of warming up. */
    private void report(String name, Work work) {
        for (int round = 0; round < ROUNDS; round++) {
            nanosPerOperation(work);
        }
        double[] nanos = new double[ROUNDS];
        for (int round = 0; round < ROUNDS; round++) {
            nanos[round] = nanosPerOperation(work);
        }
        Arrays.sort(nanos);
        System.err.printf(Locale.ROOT, "%-28s %6d contacts  min %8.3f  median %8.3f  max %8.3f us%n", name,
                records.length, nanos[0] / 1e3, nanos[ROUNDS / 2] / 1e3, nanos[ROUNDS - 1] / 1e3);
    }

    private static double nanosPerOperation(Work work) {
        long operations = 0;
        long started = System.nanoTime();
        long elapsed;
        do {
            operations += work.run();
            elapsed = System.nanoTime() - started;
        } while (elapsed < ROUND_NANOS);
        return (double) elapsed / operations;
    }
}

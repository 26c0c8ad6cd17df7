package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.PIMCodes;
import com.qvr.zek.pim.PIMItemImpl;
import com.qvr.zek.pim.PIMListImpl;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.sql.Connection;
import java.sql.DriverManager;
import java.sql.PreparedStatement;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.sql.Statement;
import java.util.Collections;

/** What a program waits for its first value, one of the first contact, in a virtual machine that just started. */
final class ColdStart {
    private ColdStart() {
    }

    /** One start, in nanoseconds. */
    static Measurement.Round of(String subject, Path home) {
        return () -> Double.parseDouble(FreshJvm.run(home, Collections.emptyList(), ColdStart.class, subject));
    }

    public static void main(String[] arguments) throws Exception {
        Path home = Paths.get(System.getenv("JSR75_PIM_HOME"));
        long started = System.nanoTime();
        String email = arguments[0].equals(Subject.LIBRARY) ? throughLibrary() : byHand(home);
        long elapsed = System.nanoTime() - started;
        if (!email.equals(SampleContact.email(0))) {
            throw new IllegalStateException("the first value is " + email);
        }
        System.err.println(elapsed);
    }

    /** Begins with loading the library, which the class initialiser of the natives does. */
    private static String throughLibrary() {
        int first = new PIMListImpl().nextRecordN(PIMCodes.List.CONTACT, 0, PIMCodes.NO_RECORD);
        return new PIMItemImpl().getStringN(PIMCodes.List.CONTACT, 0, first, PIMCodes.Contact.EMAIL, 0);
    }

    /** Begins with loading the driver. */
    private static String byHand(Path home) throws SQLException {
        try (Connection connection = DriverManager.getConnection("jdbc:sqlite:" + home.resolve("address.db3"));
                Statement walk = connection.createStatement();
                ResultSet first = walk.executeQuery("SELECT record_index FROM contact ORDER BY record_index LIMIT 1");
                PreparedStatement read = connection.prepareStatement(
                        "SELECT email FROM email WHERE record_index = ? AND position = 0")) {
            read.setInt(1, first.getInt(1));
            try (ResultSet email = read.executeQuery()) {
                return email.getString(1);
            }
        }
    }
}

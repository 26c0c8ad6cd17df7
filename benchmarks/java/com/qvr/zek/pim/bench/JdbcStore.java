package com.qvr.zek.pim.bench;

import java.nio.file.Path;
import java.sql.Connection;
import java.sql.DriverManager;
import java.sql.PreparedStatement;
import java.sql.ResultSet;
import java.sql.SQLException;
import java.sql.Statement;
import java.time.Instant;
import java.time.LocalDateTime;
import java.time.ZoneId;
import java.time.format.DateTimeFormatter;
import java.util.Arrays;

/**
 * The same tables as someone writes a program for them by hand: connections stay open, statements stay prepared, and
 * commits are as durable as the library's.
 */
final class JdbcStore implements PimStore, AutoCloseable {
    private static final DateTimeFormatter STORED_TIME = DateTimeFormatter.ofPattern("yyyy-MM-dd HH:mm:ss");
    private static final String NAME_COLUMNS = "last_name, first_name";
    private static final String ADDRESS_COLUMNS = "pobox, additional_info, street, city, state, postal_code, country";
    private static final int HOME_PHONE_TYPE = 4;
    private static final int WORK_PHONE_TYPE = 5;

    private static final String SEARCH = "SELECT record_index FROM contact AS c WHERE first_name LIKE ?1"
            + " OR last_name LIKE ?1 OR note LIKE ?1 OR company_name LIKE ?1 OR job_title LIKE ?1"
            + " OR EXISTS (SELECT 1 FROM address AS a WHERE a.record_index = c.record_index AND (street LIKE ?1"
            + " OR additional_info LIKE ?1 OR city LIKE ?1 OR postal_code LIKE ?1 OR state LIKE ?1 OR country LIKE ?1"
            + " OR pobox LIKE ?1))"
            + " OR EXISTS (SELECT 1 FROM email AS e WHERE e.record_index = c.record_index AND email LIKE ?1)"
            + " OR EXISTS (SELECT 1 FROM phone AS p WHERE p.record_index = c.record_index AND number LIKE ?1)"
            + " ORDER BY record_index LIMIT 1";

    private static final String ALL_FIELDS = "SELECT " + NAME_COLUMNS + ", nickname, company_name, job_title, note,"
            + " home.number, work.number, email, homepage, " + ADDRESS_COLUMNS + ", unixepoch(birthday)"
            + " FROM contact AS c"
            + " LEFT JOIN phone AS home ON home.record_index = c.record_index AND home.position = 0"
            + " LEFT JOIN phone AS work ON work.record_index = c.record_index AND work.position = 1"
            + " LEFT JOIN email AS e ON e.record_index = c.record_index AND e.position = 0"
            + " LEFT JOIN homepage AS h ON h.record_index = c.record_index AND h.slot = 0"
            + " LEFT JOIN address AS a ON a.record_index = c.record_index AND a.position = 0"
            + " WHERE c.record_index = ?";

    private static final String NEXT_TODOS = "SELECT record_index FROM record WHERE type = 9 AND repeat_end_or_due ="
            + " (SELECT min(repeat_end_or_due) FROM record WHERE type = 9 AND repeat_end_or_due > ?)";

    /** What is done between the beginning of a transaction and its commit. */
    interface Change {
        void make() throws SQLException;
    }

    private final Connection contacts;
    private final Connection organizer;

    private final PreparedStatement next;
    private final PreparedStatement nextInCategory;
    private final PreparedStatement search;
    private final PreparedStatement nextToDos;

    private final PreparedStatement name;
    private final PreparedStatement nickname;
    private final PreparedStatement organisation;
    private final PreparedStatement title;
    private final PreparedStatement note;
    private final PreparedStatement homePhone;
    private final PreparedStatement workPhone;
    private final PreparedStatement email;
    private final PreparedStatement page;
    private final PreparedStatement address;
    private final PreparedStatement birthday;
    private final PreparedStatement allFields;

    private final PreparedStatement insertContact;
    private final PreparedStatement insertedIndex;
    private final PreparedStatement updateContact;
    private final PreparedStatement[] deleteBelongings;
    private final PreparedStatement insertPhone;
    private final PreparedStatement insertEmail;
    private final PreparedStatement insertPage;
    private final PreparedStatement insertAddress;
    private final PreparedStatement insertMembership;

    JdbcStore(Path folder) throws SQLException {
        contacts = open(folder.resolve("address.db3"));
        organizer = open(folder.resolve("organizer.db3"));

        next = contacts.prepareStatement(
                "SELECT record_index FROM contact WHERE record_index > ? ORDER BY record_index LIMIT 1");
        nextInCategory = contacts.prepareStatement("SELECT record_index FROM membership WHERE record_index > ?"
                + " AND key_index = (SELECT key_index FROM contact_group WHERE name = ?)"
                + " ORDER BY record_index LIMIT 1");
        search = contacts.prepareStatement(SEARCH);
        nextToDos = organizer.prepareStatement(NEXT_TODOS);

        name = select(NAME_COLUMNS, "contact");
        nickname = select("nickname", "contact");
        organisation = select("company_name", "contact");
        title = select("job_title", "contact");
        note = select("note", "contact");
        homePhone = select("number", "phone", "position", 0);
        workPhone = select("number", "phone", "position", 1);
        email = select("email", "email", "position", 0);
        page = select("homepage", "homepage", "slot", 0);
        address = select(ADDRESS_COLUMNS, "address", "position", 0);
        birthday = select("unixepoch(birthday)", "contact"); // In UTC, as the benchmark runs: the cheapest conversion.
        allFields = contacts.prepareStatement(ALL_FIELDS);

        insertContact = contacts.prepareStatement("INSERT INTO contact (last_name, first_name, nickname, job_title,"
                + " company_name, birthday, note, save_time)"
                + " VALUES (?, ?, ?, ?, ?, ?, ?, datetime('now', 'localtime'))");
        insertedIndex = contacts.prepareStatement("SELECT last_insert_rowid()");
        updateContact = contacts.prepareStatement("UPDATE contact SET last_name = ?, first_name = ?, nickname = ?,"
                + " job_title = ?, company_name = ?, birthday = ?, note = ?, save_time = datetime('now', 'localtime')"
                + " WHERE record_index = ?");
        String[] belongings = {"phone", "email", "homepage", "address", "membership"};
        deleteBelongings = new PreparedStatement[belongings.length];
        for (int i = 0; i < belongings.length; i++) {
            deleteBelongings[i] = contacts.prepareStatement("DELETE FROM " + belongings[i] + " WHERE record_index = ?");
        }
        insertPhone = contacts.prepareStatement(
                "INSERT INTO phone (record_index, position, type, number) VALUES (?, ?, ?, ?)");
        insertEmail = contacts.prepareStatement("INSERT INTO email (record_index, position, email) VALUES (?, 0, ?)");
        insertPage = contacts.prepareStatement("INSERT INTO homepage (record_index, slot, homepage) VALUES (?, 0, ?)");
        insertAddress = contacts.prepareStatement("INSERT INTO address (record_index, position, type, "
                + ADDRESS_COLUMNS + ", full_text) VALUES (?, 0, 0, ?, ?, ?, ?, ?, ?, ?, ?)");
        insertMembership = contacts.prepareStatement("INSERT INTO membership (record_index, key_index)"
                + " SELECT ?, key_index FROM contact_group WHERE name = ?");
    }

    private static Connection open(Path file) throws SQLException {
        Connection connection = DriverManager.getConnection("jdbc:sqlite:" + file);
        execute(connection, "PRAGMA journal_mode = WAL");
        execute(connection, "PRAGMA synchronous = FULL");
        execute(connection, "PRAGMA foreign_keys = ON");
        return connection;
    }

    private static void execute(Connection connection, String sql) throws SQLException {
        try (Statement statement = connection.createStatement()) {
            statement.execute(sql);
        }
    }

    private PreparedStatement select(String columns, String table) throws SQLException {
        return contacts.prepareStatement("SELECT " + columns + " FROM " + table + " WHERE record_index = ?");
    }

    private PreparedStatement select(String columns, String table, String key, int position) throws SQLException {
        return contacts.prepareStatement(
                "SELECT " + columns + " FROM " + table + " WHERE record_index = ? AND " + key + " = " + position);
    }

    @Override
    public void close() throws SQLException {
        contacts.close();
        organizer.close();
    }

    /** Copies the files as they are at this moment. */
    void copyTo(Path folder) throws SQLException {
        execute(contacts, "backup to '" + folder.resolve("address.db3") + "'");
        execute(organizer, "backup to '" + folder.resolve("organizer.db3") + "'");
    }

    // ---- Writing ----------------------------------------------------------------------------------------------------

    @Override
    public int add(SampleContact contact) throws SQLException {
        int[] recindex = new int[1];
        inTransaction(contacts, () -> recindex[0] = insert(contact));
        return recindex[0];
    }

    @Override
    public void update(int recindex, SampleContact contact) throws SQLException {
        inTransaction(contacts, () -> {
            bindContact(updateContact, contact);
            updateContact.setInt(8, recindex);
            if (updateContact.executeUpdate() != 1) {
                throw new SQLException("there is no contact " + recindex);
            }
            for (PreparedStatement deletion : deleteBelongings) {
                deletion.setInt(1, recindex);
                deletion.executeUpdate();
            }
            insertBelongings(recindex, contact);
        });
    }

    /** Makes a store that holds the first contacts hold {@code count} of them, in one transaction. */
    void setContacts(int count) throws SQLException {
        inTransaction(contacts, () -> {
            execute(contacts, "DELETE FROM contact WHERE record_index > " + count);
            int present;
            try (Statement statement = contacts.createStatement();
                    ResultSet rows = statement.executeQuery("SELECT count(*) FROM contact")) {
                present = rows.getInt(1);
            }
            for (int number = present; number < count; number++) {
                insert(new SampleContact(number));
            }
        });
    }

    /** Fills the empty organizer. */
    void addToDos() throws SQLException {
        inTransaction(organizer, () -> {
            try (PreparedStatement insertion = organizer.prepareStatement("INSERT INTO record"
                    + " (type, kind, summary, description, repeat_end_or_due) VALUES (9, 2, ?, ?, ?)")) {
                for (int number = 0; number < SampleToDo.COUNT; number++) {
                    SampleToDo todo = new SampleToDo(number);
                    insertion.setString(1, todo.summary);
                    insertion.setString(2, todo.note);
                    insertion.setString(3, storedTime(todo.due));
                    insertion.executeUpdate();
                }
            }
        });
    }

    private static void inTransaction(Connection connection, Change change) throws SQLException {
        connection.setAutoCommit(false);
        change.make();
        connection.commit();
        connection.setAutoCommit(true);
    }

    private int insert(SampleContact contact) throws SQLException {
        bindContact(insertContact, contact);
        insertContact.executeUpdate();
        int recindex;
        try (ResultSet rows = insertedIndex.executeQuery()) {
            recindex = rows.getInt(1);
        }
        insertBelongings(recindex, contact);
        return recindex;
    }

    private static void bindContact(PreparedStatement target, SampleContact contact) throws SQLException {
        target.setString(1, contact.name[0]);
        target.setString(2, contact.name[1]);
        target.setString(3, contact.nickname);
        target.setString(4, contact.title);
        target.setString(5, contact.organisation);
        target.setString(6, storedTime(contact.birthday));
        target.setString(7, contact.note);
    }

    private void insertBelongings(int recindex, SampleContact contact) throws SQLException {
        insertPhone(recindex, 0, HOME_PHONE_TYPE, contact.homePhone);
        insertPhone(recindex, 1, WORK_PHONE_TYPE, contact.workPhone);
        insertText(insertEmail, recindex, contact.email);
        insertText(insertPage, recindex, contact.page);
        insertAddress.setInt(1, recindex);
        for (int element = 0; element < contact.address.length; element++) {
            insertAddress.setString(2 + element, contact.address[element]);
        }
        insertAddress.setString(2 + contact.address.length, String.join(" ", contact.address));
        insertAddress.executeUpdate();
        insertText(insertMembership, recindex, contact.category);
    }

    private void insertPhone(int recindex, int position, int type, String number) throws SQLException {
        insertPhone.setInt(1, recindex);
        insertPhone.setInt(2, position);
        insertPhone.setInt(3, type);
        insertPhone.setString(4, number);
        insertPhone.executeUpdate();
    }

    private static void insertText(PreparedStatement insertion, int recindex, String text) throws SQLException {
        insertion.setInt(1, recindex);
        insertion.setString(2, text);
        insertion.executeUpdate();
    }

    private static String storedTime(long milliseconds) {
        return STORED_TIME.format(LocalDateTime.ofInstant(Instant.ofEpochMilli(milliseconds), ZoneId.systemDefault()));
    }

    // ---- Reading ----------------------------------------------------------------------------------------------------

    @Override
    public int next(int recindex) throws SQLException {
        next.setInt(1, recindex);
        return firstIndex(next);
    }

    @Override
    public int nextInCategory(int recindex, String category) throws SQLException {
        nextInCategory.setInt(1, recindex);
        nextInCategory.setString(2, category);
        return firstIndex(nextInCategory);
    }

    @Override
    public int search(String text) throws SQLException {
        search.setString(1, "%" + text + "%");
        return firstIndex(search);
    }

    private static int firstIndex(PreparedStatement query) throws SQLException {
        try (ResultSet rows = query.executeQuery()) {
            return rows.next() ? rows.getInt(1) : -1;
        }
    }

    @Override
    public String email(int recindex) throws SQLException {
        return text(email, recindex);
    }

    @Override
    public Object[] fields(int recindex) throws SQLException {
        return new Object[] {
            texts(name, recindex, 2),
            text(nickname, recindex),
            text(organisation, recindex),
            text(title, recindex),
            text(note, recindex),
            text(homePhone, recindex),
            text(workPhone, recindex),
            email(recindex),
            text(page, recindex),
            texts(address, recindex, 7),
            milliseconds(birthday, recindex),
        };
    }

    /** As {@link #fields}, by a single statement. */
    Object[] fieldsAtOnce(int recindex) throws SQLException {
        allFields.setInt(1, recindex);
        try (ResultSet row = allFields.executeQuery()) {
            row.next();
            return new Object[] {
                texts(row, 1, 2),
                row.getString(3), row.getString(4), row.getString(5), row.getString(6),
                row.getString(7), row.getString(8), row.getString(9), row.getString(10),
                texts(row, 11, 7),
                row.getLong(18) * 1000,
            };
        }
    }

    private static String text(PreparedStatement query, int recindex) throws SQLException {
        query.setInt(1, recindex);
        try (ResultSet row = query.executeQuery()) {
            row.next();
            return row.getString(1);
        }
    }

    private static String[] texts(PreparedStatement query, int recindex, int columns) throws SQLException {
        query.setInt(1, recindex);
        try (ResultSet row = query.executeQuery()) {
            row.next();
            return texts(row, 1, columns);
        }
    }

    private static String[] texts(ResultSet row, int first, int columns) throws SQLException {
        String[] texts = new String[columns];
        for (int column = 0; column < columns; column++) {
            texts[column] = row.getString(first + column);
        }
        return texts;
    }

    private static long milliseconds(PreparedStatement query, int recindex) throws SQLException {
        query.setInt(1, recindex);
        try (ResultSet row = query.executeQuery()) {
            row.next();
            return row.getLong(1) * 1000;
        }
    }

    @Override
    public int[] nextToDos(long after) throws SQLException {
        nextToDos.setString(1, storedTime(after));
        int[] found = new int[SampleToDo.COUNT];
        int count = 0;
        try (ResultSet rows = nextToDos.executeQuery()) {
            while (rows.next()) {
                found[count++] = rows.getInt(1);
            }
        }
        return Arrays.copyOf(found, count);
    }
}

package com.qvr.zek.pim.test;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.qvr.zek.pim.CommitRequest;
import com.qvr.zek.pim.PIMCodes.Contact;
import com.qvr.zek.pim.PIMCodes.Event;
import com.qvr.zek.pim.PIMCodes.ToDo;
import java.io.BufferedReader;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** What one VM commits, another reads, whatever becomes of the first. */
class PersistenceTest extends StoreTest {
    private static final int COMMITS_BEFORE_THE_KILL = 25;

    private static String childText(int listtype, int recindex, int field) throws Exception {
        return Child.run("text", "" + listtype, "" + recindex, "" + field).output;
    }

    @Test
    void anotherProcessReadsTheSameValues() throws Exception {
        String text = "\u00c5se \u5c71 \ud83d\ude80";
        int contact = add(CONTACT, new CommitRequest().string(Contact.NICKNAME, text).number(Contact.BIRTHDAY, 86_400_000L));
        int event = add(EVENT, new CommitRequest().string(Event.SUMMARY, text).number(Event.END, 1_710_000_000_000L));
        int todo = add(TODO, new CommitRequest().string(ToDo.NOTE, text).number(ToDo.DUE, 1_720_000_000_000L));

        assertEquals(text + "\n", childText(CONTACT, contact, Contact.NICKNAME));
        assertEquals("86400000\n", Child.run("date", "1", "" + contact, "" + Contact.BIRTHDAY).output);
        assertEquals(text + "\n", childText(EVENT, event, Event.SUMMARY));
        assertEquals("1710000000000\n", Child.run("date", "2", "" + event, "" + Event.END).output);
        assertEquals(text + "\n", childText(TODO, todo, ToDo.NOTE));
        assertEquals("1720000000000\n", Child.run("date", "3", "" + todo, "" + ToDo.DUE).output);
    }

    @ParameterizedTest
    @CsvSource({"1," + Contact.NICKNAME, "2," + Event.SUMMARY, "3," + ToDo.SUMMARY})
    void aKillLosesNoItemWhoseCommitHadReturned(int listtype, int field) throws Exception {
        Path output = Files.createTempFile("commits", ".txt");
        Process child = Child.start(ProcessBuilder.Redirect.to(output.toFile()), "commit-for-ever", "" + listtype,
                "" + field);
        try {
            while (committed(output).size() < COMMITS_BEFORE_THE_KILL) {
                assertTrue(child.isAlive(), "the child ended by itself");
                Thread.sleep(20);
            }
        } finally {
            child.destroyForcibly().waitFor();
        }

        List<String> committed = committed(output);
        for (String line : committed) {
            String[] indexAndText = line.split("\t");
            assertEquals(indexAndText[1], text(listtype, Integer.parseInt(indexAndText[0]), field));
        }
        assertTrue(records(listtype).size() >= committed.size());
        Files.delete(output);
    }

    /** What the child has said so far, in whole lines. */
    private static List<String> committed(Path output) throws IOException {
        String said = new String(Files.readAllBytes(output), StandardCharsets.UTF_8);
        String whole = said.substring(0, said.lastIndexOf('\n') + 1);
        return whole.isEmpty() ? Collections.emptyList() : Arrays.asList(whole.split("\n"));
    }

    @Test
    void thisProcessSeesWhatAnotherCommitsMeanwhile() throws Exception {
        assertEquals(-1, LISTS.nextRecordN(CONTACT, HANDLE, -1));
        Process child = Child.start(ProcessBuilder.Redirect.PIPE, "commit-for-ever", "1",
                "" + Contact.NICKNAME);
        try (BufferedReader reader = Child.reader(child)) {
            for (int i = 0; i < 3; i++) {
                String[] indexAndText = reader.readLine().split("\t");
                assertEquals(indexAndText[1], text(CONTACT, Integer.parseInt(indexAndText[0]), Contact.NICKNAME));
            }
        } finally {
            child.destroyForcibly().waitFor();
        }
    }
}

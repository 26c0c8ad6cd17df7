package com.qvr.zek.pim.bench;

import java.io.IOException;
import java.nio.ByteBuffer;
import java.nio.channels.FileChannel;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.nio.file.StandardOpenOption;
import java.time.LocalDate;

/** Contacts as vCard files in a folder, each of them complete and on the disk before the next one. */
final class VcardFolder implements AutoCloseable {
    private final Path folder;
    private final FileChannel entries;

    VcardFolder(Path folder) throws IOException {
        this.folder = folder;
        entries = FileChannel.open(folder, StandardOpenOption.READ);
    }

    void add(SampleContact contact) throws IOException {
        Path unfinished = folder.resolve(contact.number + ".tmp");
        try (FileChannel file = FileChannel.open(unfinished, StandardOpenOption.CREATE_NEW, StandardOpenOption.WRITE)) {
            ByteBuffer bytes = ByteBuffer.wrap(vcard(contact).getBytes(StandardCharsets.UTF_8));
            while (bytes.hasRemaining()) {
                file.write(bytes);
            }
            file.force(true);
        }
        Files.move(unfinished, folder.resolve(contact.number + ".vcf"), StandardCopyOption.ATOMIC_MOVE);
        entries.force(true);
    }

    private static String vcard(SampleContact contact) {
        return String.join("\r\n",
                "BEGIN:VCARD",
                "VERSION:3.0",
                "N:" + String.join(";", contact.name) + ";;;",
                "FN:" + contact.name[1] + " " + contact.name[0],
                "NICKNAME:" + contact.nickname,
                "ORG:" + contact.organisation,
                "TITLE:" + contact.title,
                "NOTE:" + contact.note,
                "TEL;TYPE=HOME:" + contact.homePhone,
                "TEL;TYPE=WORK:" + contact.workPhone,
                "EMAIL:" + contact.email,
                "URL:" + contact.page,
                "ADR;TYPE=HOME:" + String.join(";", contact.address),
                "BDAY:" + LocalDate.ofEpochDay(contact.number),
                "CATEGORIES:" + contact.category,
                "END:VCARD",
                "");
    }

    @Override
    public void close() throws IOException {
        entries.close();
    }
}

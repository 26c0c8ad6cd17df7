// failing_vfs.h: the file system beneath SQLite, of which the nth call of a kind fails.
#pragma once

// What SQLite asks of a file system and a disk can refuse.
enum class file_call { open, access, remove, read, write, truncate, sync, size, lock, map_index, lock_index };

struct file_fault {
    file_call call;
    int result;         // What SQLite is told.
    int system_error;   // The errno that goes with it.
    int nth = 1;        // The first call that fails, counted from 1 since the fault was armed.
    bool lasts = false; // Whether all later ones fail, too.
};

namespace failing_vfs {

// Becomes the file system of every database that this process opens from now on.
void install();

void arm(const file_fault& fault);
void disarm();

// How many calls have failed since the fault was armed.
int injected();

// How many calls there have been since a fault was armed, or since start_counting().
void start_counting();
int calls_of(file_call call);

} // namespace failing_vfs

// bench_folder.h: where the files are while speeds are taken, and the end of a program that cannot go on.
#ifndef JSR75_PIM_BENCHMARKS_BENCH_FOLDER_H
#define JSR75_PIM_BENCHMARKS_BENCH_FOLDER_H

#include <filesystem>
#include <string>

// A folder of the current one, so that commits reach the disk under that, with the files of the stores and beside them
// their copies. It goes with the object. One in a process: the stores ask for theirs once.
class bench_folder {
public:
    bench_folder();
    bench_folder(const bench_folder&) = delete;
    bench_folder& operator=(const bench_folder&) = delete;
    ~bench_folder();

    std::filesystem::path contacts() const { return folder_ / "store/address.db3"; }
    std::filesystem::path organizer() const { return folder_ / "store/organizer.db3"; }
    std::filesystem::path contacts_copy() const { return folder_ / "address.db3"; }
    std::filesystem::path organizer_copy() const { return folder_ / "organizer.db3"; }

    // Lets the stores make their files, and fills these with the samples 1 to `count`.
    void fill(int count) const;

    // The same files once more; nobody has the copies open.
    void copy() const;

private:
    std::filesystem::path folder_;
};

[[noreturn]] void give_up(const char* what);

// No measurement goes on with what has failed.
inline void demand(bool holds, const char* what)
{
    if (!holds) [[unlikely]]
        give_up(what);
}

#endif

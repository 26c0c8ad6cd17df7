// Measures the stand-alone stores through their C functions, beside SQLite called by hand on copies of their files, and
// the product's search on top of the store. Prints a table; takes Google Benchmark's options, of which --benchmark_out
// gets the JSON of all numbers of records.
//
// Times that wait for the disk are the clock's, all others the processor's. Both sides commit to files in WAL mode with
// synchronous=FULL, so that each waits for the disk once a commit and at checkpoints; the counter `syncs` shows it.

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <string.h>

#include "bench_folder.h"
#include "durable_commits.h"
#include "fake_jni.h"
#include "natives.h"
#include "pimcodes.h"
#include "raw_contacts.h"
#include "raw_organizer.h"
#include "results.h"
#include "samples.h"

static constexpr int RECORDS[] = {1000, 3000, 10000};
static constexpr int COMMITS = 20; // In a repetition.
static constexpr char NOWHERE[] = "no contact says this";

// ---- The stores, whose failures end the program ---------------------------------------------------------------------

static void get(int32_t recindex, contact_record& contact)
{
    int error = 0;
    demand(contact_db_service_contact_get(0, recindex, 0, &contact, &error) != 0, "contact_get");
}

static int32_t list(std::span<int32_t> indices)
{
    auto count = static_cast<int>(indices.size());
    int error = 0;
    demand(contact_db_service_contact_get_all_indices(0, indices.data(), &count, &error) != 0, "get_all_indices");
    return count;
}

static int32_t members(int32_t key_index, std::span<int32_t> indices)
{
    auto count = static_cast<int>(indices.size());
    int error = 0;
    demand(contact_db_service_group_get_members(0, key_index, indices.data(), &count, &error) != 0,
           "group_get_members");
    return count;
}

static bool says(const contact_record& contact, const char* match)
{
    const auto contains = [match](const char* text) { return strcasestr(text, match) != nullptr; };
    if (contains(contact.name_info.first_name) || contains(contact.name_info.last_name)) return true;
    for (int32_t i = 0; i < contact.postal_count; ++i) {
        const contact_address& address = contact.address_info[i];
        if (contains(address.street) || contains(address.additional_info) || contains(address.city) ||
            contains(address.postal_code) || contains(address.state) || contains(address.country) ||
            contains(address.pobox))
            return true;
    }
    for (int32_t i = 0; i < contact.email_count; ++i)
        if (contains(contact.email_info[i].email)) return true;
    for (int32_t i = 0; i < contact.phone_count; ++i)
        if (contains(contact.phone_info[i].number)) return true;
    return contains(contact.note) || contains(contact.company_name) || contains(contact.job_title);
}

static int32_t search(const char* match)
{
    std::vector<int32_t> indices(CONTACT_RECORD_MAX);
    indices.resize(static_cast<size_t>(list(indices)));
    const auto found = std::ranges::find_if(indices, [match](int32_t recindex) {
        owned_contact contact;
        get(recindex, contact);
        return says(contact, match);
    });
    return found == indices.end() ? NO_RECORD : *found;
}

static int32_t search_product(fake_jni& jni, jstring match)
{
    const int32_t found =
        Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(jni.env(), nullptr, LIST_CONTACT, 0, NO_RECORD, match);
    jni.calls.clear(); // Its journal would grow.
    return found;
}

static void get_item(int32_t index, org_full_record& item)
{
    int error = 0;
    demand(org_db_service_get_record_full_field_by_index(index, &item, &error) != 0, "get_record_full_field_by_index");
}

static int32_t list_items(int32_t type, std::span<int32_t> indices)
{
    int count = 0, error = 0;
    demand(org_db_service_get_record_count(0, type, &count, &error) != 0, "get_record_count");
    demand(org_db_service_get_records_id(0, type, static_cast<int>(indices.size()), 0, indices.data(), &error) != 0,
           "get_records_id");
    return count;
}

// Fetches see both types.
static void leave_typed_scope()
{
    int error = 0;
    org_db_service_connect_database(&error);
}

// ---- Both sides -----------------------------------------------------------------------------------------------------

// Files of so many records, the same for the stores and for SQLite.
class scene {
public:
    scene(const bench_folder& folder, int records);

    raw_contacts& contacts() { return *contacts_; }
    raw_organizer& organizer() { return *organizer_; }
    int records() const { return records_; }

    // All records but the last, which adding replaces, in an order without pattern.
    const std::vector<int32_t>& shuffled() const { return shuffled_; }

private:
    void check_sameness();

    int records_;
    std::vector<int32_t> shuffled_;
    std::unique_ptr<raw_contacts> contacts_;
    std::unique_ptr<raw_organizer> organizer_;
};

scene::scene(const bench_folder& folder, int records) : records_(records), shuffled_(static_cast<size_t>(records - 1))
{
    folder.fill(records);
    folder.copy();
    contacts_ = std::make_unique<raw_contacts>(folder.contacts_copy());
    organizer_ = std::make_unique<raw_organizer>(folder.organizer_copy());
    std::iota(shuffled_.begin(), shuffled_.end(), 1);
    std::ranges::shuffle(shuffled_, std::minstd_rand()); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time.
    check_sameness();
}

// Both sides answer the same, and so the stores have loaded everything when measuring begins.
void scene::check_sameness()
{
    std::vector<int32_t> one(CONTACT_RECORD_MAX), other(CONTACT_RECORD_MAX);
    demand(list(one) == records_ && contacts_->list(other) == records_ && one == other, "the same contacts");
    for (int32_t recindex = 1; recindex <= records_; ++recindex) {
        owned_contact of_store, of_sqlite;
        get(recindex, of_store);
        contacts_->get(recindex, of_sqlite);
        demand(same_contact(of_store, of_sqlite), "the same contact");

        owned_item item_of_store, item_of_sqlite;
        leave_typed_scope();
        get_item(recindex, item_of_store);
        organizer_->get(recindex, item_of_sqlite);
        demand(same_item(item_of_store, item_of_sqlite), "the same organizer record");
    }
    demand(members(0, one) == contacts_->members(0, other) && one == other, "the same members");
    demand(list_items(ORG_TYPE_EVENT, one) == organizer_->list(ORG_TYPE_EVENT, other) && one == other,
           "the same events");
    fake_jni jni;
    for (const auto& [match, expected] : {std::pair(only_in_contact(records_), records_), {NOWHERE, NO_RECORD}})
        demand(search(match.c_str()) == expected && contacts_->search(match) == expected &&
                   search_product(jni, jni.string(match)) == expected,
               "the same find");
}

// ---- Registration ---------------------------------------------------------------------------------------------------

static std::string name_of(const char* operation, const char* subject, const scene& on)
{
    return std::string(operation) + "/" + subject + "/" + std::to_string(on.records());
}

// `work` returns whether its result is right.
template <typename Work>
static void measure(const std::string& name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) mutable {
        for (auto _ : state)
            if (!work()) [[unlikely]]
                state.SkipWithError("a wrong result");
    });
}

// Gives the elements of a list for ever.
class endless_walk {
public:
    explicit endless_walk(const std::vector<int32_t>& indices) : indices_(&indices) {}
    int32_t next()
    {
        if (at_ == indices_->size()) at_ = 0;
        return (*indices_)[at_++];
    }

private:
    const std::vector<int32_t>* indices_;
    size_t at_ = 0;
};

template <typename Fetch>
static void measure_fetch(const char* subject, const scene& on, Fetch fetch)
{
    measure(name_of("fetch", subject, on), [fetch, walk = endless_walk(on.shuffled())]() mutable {
        owned_contact contact;
        const int32_t recindex = walk.next();
        fetch(recindex, contact);
        return contact.index == recindex;
    });
}

template <typename List>
static void measure_list(const char* operation, const char* subject, const scene& on, int expected, List list_into)
{
    measure(name_of(operation, subject, on), [=, indices = std::vector<int32_t>(CONTACT_RECORD_MAX)]() mutable {
        // A commit may be under way on the other side of a record less.
        return std::abs(list_into(std::span(indices)) - expected) <= 1;
    });
}

static void measure_contacts(scene& on)
{
    raw_contacts& raw = on.contacts();
    measure_fetch("store", on, get);
    measure_fetch("sqlite", on, [&raw](int32_t recindex, contact_record& contact) { raw.get(recindex, contact); });
    measure_list("list", "store", on, on.records(), list);
    measure_list("list", "sqlite", on, on.records(), [&raw](auto indices) { return raw.list(indices); });
    const int in_a_group = on.records() / SAMPLE_GROUPS;
    measure_list("members", "store", on, in_a_group, [](auto indices) { return members(0, indices); });
    measure_list("members", "sqlite", on, in_a_group, [&raw](auto indices) { return raw.members(0, indices); });

    measure(name_of("search", "store", on), [] { return search(NOWHERE) == NO_RECORD; });
    measure(name_of("search", "sqlite", on), [&raw] { return raw.search(NOWHERE) == NO_RECORD; });
    const auto jni = std::make_shared<fake_jni>();
    measure(name_of("search", "product", on),
            [jni, match = jni->string(NOWHERE)] { return search_product(*jni, match) == NO_RECORD; });
}

template <typename Fetch>
static void measure_organizer_fetch(const char* subject, const scene& on, Fetch fetch)
{
    // The caller brings the buffers, and may keep them from one fetch to the next.
    const auto item = std::make_shared<owned_item>();
    measure(name_of("organizer-fetch", subject, on), [fetch, item, walk = endless_walk(on.shuffled())]() mutable {
        const int32_t index = walk.next();
        fetch(index, *item);
        return item->index == index;
    });
}

static void measure_organizer(scene& on)
{
    raw_organizer& raw = on.organizer();
    measure_organizer_fetch("store", on, [](int32_t index, org_full_record& item) {
        leave_typed_scope();
        get_item(index, item);
    });
    measure_organizer_fetch("sqlite", on, [&raw](int32_t index, org_full_record& item) { raw.get(index, item); });
    const int events = on.records() / 2;
    measure_list("organizer-list", "store", on, events,
                 [](auto indices) { return list_items(ORG_TYPE_EVENT, indices); });
    measure_list("organizer-list", "sqlite", on, events,
                 [&raw](auto indices) { return raw.list(ORG_TYPE_EVENT, indices); });
}

// ---- Commits --------------------------------------------------------------------------------------------------------

static void measure_commits(const char* operation, const scene& on, durable_commits::way of_store,
                            durable_commits::way of_sqlite)
{
    const auto commits = std::make_shared<durable_commits>(std::move(of_store), std::move(of_sqlite));
    const auto measure_side = [&](const char* subject, durable_commits::side side) {
        const auto take_costs = [commits, side](benchmark::State& state) {
            double syncs = 0, cpu = 0;
            for (auto _ : state) {
                const commit_cost cost = commits->next(side);
                state.SetIterationTime(cost.seconds);
                syncs += cost.syncs;
                cpu += cost.cpu_seconds;
            }
            using benchmark::Counter;
            state.counters["syncs"] = Counter(syncs, Counter::kAvgIterations);
            state.counters["cpu_us"] = Counter(cpu * 1e6, Counter::kAvgIterations);
        };
        benchmark::RegisterBenchmark(name_of(operation, subject, on).c_str(), take_costs)
            ->Iterations(COMMITS)
            ->UseManualTime();
    };
    measure_side("store", durable_commits::store);
    measure_side("sqlite", durable_commits::sqlite);
}

// Adding fills the place of the record removed before it, so that their number stays.
template <typename Add, typename Remove>
static durable_commits::way adding(const scene& on, Add add, Remove remove)
{
    const auto last = std::make_shared<int32_t>(on.records());
    return {.prepare = [last, remove] { remove(*last); }, .commit = [last, add] { *last = add(); }};
}

// Updates the records in turn, each time to another version. `Sample` makes a record of a number and a version.
template <typename Sample, typename Update>
static durable_commits::way updating(const scene& on, Sample sample, Update update)
{
    using record = decltype(sample(0, 0));
    struct turn {
        explicit turn(const std::vector<int32_t>& indices) : walk(indices) {}
        endless_walk walk;
        int version = 0;
        std::unique_ptr<record> next;
    };
    const auto now = std::make_shared<turn>(on.shuffled());
    return {.prepare =
                [now, sample] {
                    const int32_t index = now->walk.next();
                    now->next = std::make_unique<record>(sample(index, ++now->version));
                    now->next->index = index;
                },
            .commit = [now, update] { update(now->next->index, *now->next); }};
}

static void measure_contact_commits(scene& on)
{
    raw_contacts& raw = on.contacts();
    const auto added = std::make_shared<owned_contact>(sample_contact(on.records()));
    measure_commits(
        "add", on,
        adding(
            on,
            [added] {
                int error = 0;
                demand(contact_db_service_contact_add(added.get(), &error) != 0, "contact_add");
                return added->index;
            },
            [](int32_t recindex) {
                int error = 0;
                demand(contact_db_service_contact_delete(0, recindex, 0, 0, &error) != 0, "contact_delete");
            }),
        adding(
            on, [added, &raw] { return raw.add(*added); }, [&raw](int32_t recindex) { raw.remove(recindex); }));
    measure_commits(
        "update", on,
        updating(on, sample_contact,
                 [](int32_t recindex, contact_record& contact) {
                     int error = 0;
                     demand(contact_db_service_contact_update(0, recindex, &contact, &error) != 0, "contact_update");
                 }),
        updating(on, sample_contact,
                 [&raw](int32_t recindex, const contact_record& contact) { raw.update(recindex, contact); }));
}

static void measure_organizer_commits(scene& on)
{
    raw_organizer& raw = on.organizer();
    const int32_t type = sample_item_type(on.records());
    const auto added = std::make_shared<owned_item>(sample_item(on.records()));
    measure_commits(
        "organizer-add", on,
        adding(
            on,
            [added, type] {
                int index = 0, error = 0;
                demand(org_db_service_add_record_full_field(type, added.get(), &index, &error) != 0,
                       "add_record_full_field");
                return index;
            },
            [](int32_t index) {
                int error = 0;
                demand(org_db_service_delete_record(index, &error) != 0, "delete_record");
            }),
        adding(
            on, [added, type, &raw] { return raw.add(type, *added); }, [&raw](int32_t index) { raw.remove(index); }));
    measure_commits(
        "organizer-update", on,
        updating(on, sample_item,
                 [](int32_t index, org_full_record& item) {
                     int error = 0;
                     demand(org_db_service_update_record_full_field(index, &item, &error) != 0,
                            "update_record_full_field");
                 }),
        updating(on, sample_item, [&raw](int32_t index, const org_full_record& item) { raw.update(index, item); }));
}

// ---------------------------------------------------------------------------------------------------------------------

static constexpr std::string_view OUT_OPTION = "--benchmark_out=";

// What holds unless the command line says otherwise. The library would write its JSON anew for each number of records.
static std::vector<char*> with_defaults(int argc, char** argv, std::string& json_file)
{
    static char repetitions[] = "--benchmark_repetitions=21";
    static char min_time[] = "--benchmark_min_time=0.02";
    static char interleaving[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments = {argv[0], repetitions, min_time, interleaving};
    for (char* argument : std::span(argv + 1, static_cast<size_t>(argc - 1))) {
        if (std::string_view(argument).starts_with(OUT_OPTION))
            json_file = argument + OUT_OPTION.size();
        else
            arguments.push_back(argument);
    }
    return arguments;
}

int main(int argc, char** argv)
{
    std::string json_file;
    std::vector<char*> arguments = with_defaults(argc, argv, json_file);
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

    const bench_folder folder;
    results measured;
    for (const int records : RECORDS) {
        std::fprintf(stderr, "measuring on %d records ...\n", records);
        scene on(folder, records);
        measure_contact_commits(on);
        measure_contacts(on);
        measure_organizer_commits(on);
        measure_organizer(on);
        benchmark::RunSpecifiedBenchmarks(&measured);
        benchmark::ClearRegisteredBenchmarks();
    }
    measured.print(stdout);
    if (!json_file.empty()) measured.write_json(json_file);
    benchmark::Shutdown();
    return 0;
}

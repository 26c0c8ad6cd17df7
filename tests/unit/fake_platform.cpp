#include "fake_platform.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "allocation_faults.h"

// ---- The trace hook -------------------------------------------------------------------------------------------------

static std::string format_message(const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    // The analyzer takes a va_list parameter for one that was never started.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    text.pop_back();
    return text;
}

// The hook's own shape is variadic.
// NOLINTNEXTLINE(cert-dcl50-cpp)
__attribute__((format(printf, 6, 7))) static int record_trace(const char* path, int line, const char* function,
                                                              int component, int severity, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    fake_platform::instance().record(
        {path, line, function, component, severity, format, format_message(format, arguments), 0});
    va_end(arguments);
    return 0;
}

java_printf_function java_printf_handler = record_trace;

// ---- The double itself ----------------------------------------------------------------------------------------------

fake_platform& fake_platform::instance()
{
    static fake_platform the_platform;
    return the_platform;
}

void fake_platform::reset()
{
    const std::lock_guard lock(mutex_);
    contacts.clear();
    groups.clear();
    items.clear();
    reported_counts.clear();
    reported_members.clear();
    reported_groupless.reset();
    reported_same_name.reset();
    alter_contact = nullptr;
    alter_group = nullptr;
    alter_item = nullptr;
    before_call = nullptr;
    calls.clear();
    traces.clear();
    open_contact_connections = 0;
    open_organizer_connections = 0;
    unreleased_contacts.clear();
    unreleased_lists.clear();
    violations.clear();
    failures_.clear();
    call_failures_.clear();
    nth_failures_.clear();
    errors_on_success_.clear();
    call_counts_.clear();
    call_count_ = 0;
    failed_call_.clear();
    scopes_.clear();
    java_printf_handler = record_trace;
}

static void copy_into(char* field, size_t size, std::string_view text)
{
    text.copy(field, size - 1);
}

stored_contact& fake_platform::add_contact(int32_t index, std::string_view first_name, std::string_view last_name)
{
    stored_contact& contact = contacts.emplace_back();
    contact.record.index = index;
    copy_into(contact.record.name_info.first_name, sizeof contact.record.name_info.first_name, first_name);
    copy_into(contact.record.name_info.last_name, sizeof contact.record.name_info.last_name, last_name);
    return contact;
}

stored_item& fake_platform::add_item(int32_t type, int32_t index, std::string_view summary)
{
    stored_item& item = items.emplace_back();
    item.type = type;
    item.record.index = index;
    item.record.kind = type == ORG_TYPE_EVENT ? ORG_KIND_EVENT : ORG_KIND_TODO;
    item.summary = summary;
    return item;
}

void fake_platform::add_group(int32_t key, std::string_view name)
{
    contact_group_record group = {};
    group.group_key.index = key;
    char* const bytes = reinterpret_cast<char*>(&group) + offsetof(contact_group_record, name);
    name.copy(bytes, sizeof group - offsetof(contact_group_record, name) - 1);
    groups[key] = group;
}

void fake_platform::add_members(int32_t key, const std::vector<int32_t>& indexes)
{
    for (int32_t index : indexes) find_contact(index)->record.membership[key] = 1;
}

stored_contact* fake_platform::find_contact(int32_t index)
{
    const auto found = std::find_if(contacts.begin(), contacts.end(),
                                    [&](const stored_contact& contact) { return contact.record.index == index; });
    return found == contacts.end() ? nullptr : &*found;
}

stored_item* fake_platform::find_item(int32_t index)
{
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const stored_item& item) { return item.record.index == index; });
    return found == items.end() ? nullptr : &*found;
}

std::vector<int32_t> fake_platform::contact_indexes() const
{
    std::vector<int32_t> indexes;
    for (const stored_contact& contact : contacts) indexes.push_back(contact.record.index);
    return indexes;
}

std::vector<std::string> fake_platform::group_names() const
{
    std::vector<std::string> names;
    for (const auto& [key, group] : groups) names.emplace_back(group.name);
    return names;
}

void fake_platform::fail(const std::string& function, int error)
{
    failures_[function] = error;
}

void fake_platform::fail_call(const std::string& function, int nth, int error)
{
    call_failures_[{function, nth}] = error;
}

void fake_platform::fail_nth_call(int nth, int error)
{
    nth_failures_[nth] = error;
}

void fake_platform::succeed_with_error(const std::string& function, int error)
{
    errors_on_success_[function] = error;
}

std::vector<std::string> fake_platform::calls_of(std::string_view function) const
{
    std::vector<std::string> found;
    for (const std::string& call : calls)
        if (call.substr(0, call.find('(')) == function) found.push_back(call);
    return found;
}

std::vector<std::string> fake_platform::calls_between_connections() const
{
    static const std::set<std::string> frame = {"contact_db_service_connect",      "contact_db_service_disconnect",
                                                "org_db_service_connect_database", "org_db_service_disconnect_database",
                                                "org_db_service_init_full_record", "org_db_service_free_full_record"};
    std::vector<std::string> found;
    for (const std::string& call : calls)
        if (!frame.contains(call.substr(0, call.find('(')))) found.push_back(call);
    return found;
}

std::optional<int> fake_platform::scripted_failure(const std::string& function)
{
    ++call_count_;
    const int nth = ++call_counts_[function];
    if (const auto found = failures_.find(function); found != failures_.end()) return found->second;
    if (const auto found = call_failures_.find({function, nth}); found != call_failures_.end()) return found->second;
    if (const auto found = nth_failures_.find(call_count_); found != nth_failures_.end()) return found->second;
    return std::nullopt;
}

// One call: entered in the journal, then failed by the script or answered by `work`, which returns 0 or an error code.
int fake_platform::perform(const std::string& function, const std::string& arguments, int* error, int* count,
                           const std::function<int()>& work)
{
    const std::lock_guard lock(mutex_);
    calls.push_back(function + "(" + arguments + ")");
    if (before_call) before_call(calls.back());
    if (error == nullptr) violations.push_back(calls.back() + " without an error word");

    const std::optional<int> scripted = scripted_failure(function);
    const int failure = scripted ? *scripted : work();
    if (scripted) failed_call_ = calls.back();

    if (const auto reported = reported_counts.find(function); reported != reported_counts.end())
        *count = reported->second;
    if (scripted || failure != 0) {
        *error = failure;
        return 0;
    }
    if (const auto left = errors_on_success_.find(function); left != errors_on_success_.end()) *error = left->second;
    return 1;
}

void fake_platform::record(const trace_message& message)
{
    const std::lock_guard lock(mutex_);
    traces.push_back(message);
    traces.back().calls_before = calls.size();
}

// ---- What the platform functions share ------------------------------------------------------------------------------

static fake_platform& platform = fake_platform::instance();

// Parameters that the contract reserves are 0.
static void check_reserved(const char* function, std::initializer_list<int> reserved)
{
    const std::lock_guard lock(platform.mutex());
    for (const int value : reserved)
        if (value != 0)
            platform.violations.push_back(std::string(function) + " with a reserved argument that is not 0");
}

static std::string quoted(const char* text)
{
    return text == nullptr ? "null" : "\"" + std::string(text) + "\"";
}

static std::string listed(std::initializer_list<int64_t> numbers)
{
    std::string text;
    for (int64_t number : numbers) text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

// Writes at most *count indexes and sets *count to their number.
static void hand_out(const std::vector<int32_t>& indexes, int* target, int* count)
{
    const size_t capacity = static_cast<size_t>(std::max(*count, 0));
    const size_t written = std::min(capacity, indexes.size());
    std::copy_n(indexes.begin(), written, target);
    *count = static_cast<int>(written);
}

// ---- Contacts -------------------------------------------------------------------------------------------------------

// An array as a fetch hands it out: null when empty, otherwise with one zeroed entry past its count.
template <typename T>
static T* array_of(const std::vector<T>& entries, int32_t* count)
{
    *count = static_cast<int32_t>(entries.size());
    if (entries.empty()) return nullptr;
    auto* array = static_cast<T*>(platform_allocate((entries.size() + 1) * sizeof(T)));
    std::copy(entries.begin(), entries.end(), array);
    return array;
}

static void fill(contact_record* target, const stored_contact& contact)
{
    *target = contact.record;
    target->phone_info = array_of(contact.phones, &target->phone_count);
    target->email_info = array_of(contact.emails, &target->email_count);
    target->address_info = array_of(contact.addresses, &target->postal_count);
    target->note = nullptr;
    target->note_size = 0;
    if (contact.note) {
        target->note_size = static_cast<int32_t>(contact.note->size()) + 1;
        target->note = static_cast<char*>(platform_allocate(contact.note->size() + 1));
        contact.note->copy(target->note, contact.note->size());
    }
}

template <typename T>
static std::vector<T> entries_of(const T* array, int32_t count)
{
    return count > 0 ? std::vector<T>(array, array + count) : std::vector<T>();
}

static stored_contact stored_from(const contact_record& record)
{
    stored_contact contact;
    contact.record = record;
    contact.phones = entries_of(record.phone_info, record.phone_count);
    contact.emails = entries_of(record.email_info, record.email_count);
    contact.addresses = entries_of(record.address_info, record.postal_count);
    if (record.note_size > 0) contact.note = std::string(record.note, static_cast<size_t>(record.note_size) - 1);
    contact.record.phone_info = nullptr;
    contact.record.email_info = nullptr;
    contact.record.address_info = nullptr;
    contact.record.note = nullptr;
    return contact;
}

static int fetch_contact(const char* function, int recindex, contact_record* target, int* error)
{
    return platform.perform(function, listed({recindex}), error, nullptr, [&] {
        if (platform.unreleased_contacts.contains(target))
            platform.violations.push_back("a contact was fetched into a record that was not released");
        const stored_contact* contact = platform.find_contact(recindex);
        if (contact == nullptr) return static_cast<int>(CONTACT_ERROR_NOT_FOUND);
        fill(target, *contact);
        platform.unreleased_contacts.insert(target);
        if (platform.alter_contact) platform.alter_contact(*target);
        return 0;
    });
}

int contact_db_service_connect(int* error)
{
    return platform.perform(__func__, "", error, nullptr, [] {
        ++platform.open_contact_connections;
        return 0;
    });
}

int contact_db_service_disconnect(int* error)
{
    const std::lock_guard lock(platform.mutex());
    // A connection counts as closed by the attempt: what the library owes is the call.
    if (platform.open_contact_connections > 0) --platform.open_contact_connections;
    return platform.perform(__func__, "", error, nullptr, [] { return 0; });
}

int contact_db_service_contact_get_count(int reserved, int* count, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, "", error, count, [&] {
        *count = static_cast<int>(platform.contacts.size());
        return 0;
    });
}

int contact_db_service_contact_get_all_indices(int reserved, int* indices, int* count, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({*count}), error, count, [&] {
        if (platform.contacts.empty()) return static_cast<int>(CONTACT_ERROR_NO_RECORDS);
        hand_out(platform.contact_indexes(), indices, count);
        return 0;
    });
}

int contact_db_service_contact_get(int reserved, int recindex, int reserved2, contact_record* contact, int* error)
{
    check_reserved(__func__, {reserved, reserved2});
    return fetch_contact(__func__, recindex, contact, error);
}

int contact_db_service_contact_get_by_index(int reserved, int recindex, int reserved2, contact_record* contact,
                                            int* error)
{
    check_reserved(__func__, {reserved, reserved2});
    return fetch_contact(__func__, recindex, contact, error);
}

int contact_db_service_contact_is_exist(int reserved, int recindex, unsigned char* exists, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({recindex}), error, nullptr, [&] {
        *exists = platform.find_contact(recindex) != nullptr;
        return 0;
    });
}

int contact_db_service_contact_add(contact_record* contact, int* error)
{
    return platform.perform(__func__, "", error, nullptr, [&] {
        int32_t highest = 0;
        for (int32_t index : platform.contact_indexes()) highest = std::max(highest, index);
        contact->index = highest + 1;
        platform.contacts.push_back(stored_from(*contact));
        return 0;
    });
}

int contact_db_service_contact_update(int reserved, int recindex, contact_record* contact, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({recindex}), error, nullptr, [&] {
        stored_contact* stored = platform.find_contact(recindex);
        if (stored == nullptr) return static_cast<int>(CONTACT_ERROR_NOT_FOUND);
        if (contact->index != recindex) platform.violations.emplace_back("a contact updated under a foreign index");
        *stored = stored_from(*contact);
        return 0;
    });
}

int contact_db_service_contact_delete(int reserved, int recindex, int reserved2, int reserved3, int* error)
{
    check_reserved(__func__, {reserved, reserved2, reserved3});
    return platform.perform(__func__, listed({recindex}), error, nullptr, [&] {
        const auto removed = std::erase_if(
            platform.contacts, [&](const stored_contact& contact) { return contact.record.index == recindex; });
        return removed > 0 ? 0 : static_cast<int>(CONTACT_ERROR_NOT_FOUND);
    });
}

int contact_db_service_contact_free(contact_record* contact)
{
    const std::lock_guard lock(platform.mutex());
    platform.calls.emplace_back("contact_db_service_contact_free()");
    platform.unreleased_contacts.erase(contact);
    platform_free(contact->phone_info);
    platform_free(contact->email_info);
    platform_free(contact->address_info);
    platform_free(contact->note);
    contact->phone_info = nullptr;
    contact->email_info = nullptr;
    contact->address_info = nullptr;
    contact->note = nullptr;
    contact->phone_count = 0;
    contact->email_count = 0;
    contact->postal_count = 0;
    contact->note_size = 0;
    return 1;
}

static std::vector<int32_t> contacts_without_group()
{
    std::vector<int32_t> indexes;
    for (const stored_contact& contact : platform.contacts) {
        const unsigned char* bytes = contact.record.membership;
        if (std::all_of(bytes, bytes + CONTACT_GROUP_MAX, [](unsigned char byte) { return byte == 0; }))
            indexes.push_back(contact.record.index);
    }
    return indexes;
}

int contact_db_service_search_contacts_of_no_group(void* filter, int limit, const char* text, int mode, GList** list,
                                                   int* error)
{
    const std::string arguments = std::string(filter == nullptr ? "null" : "a filter") + ", " + listed({limit}) + ", " +
                                  quoted(text) + ", " + listed({mode});
    return platform.perform(__func__, arguments, error, nullptr, [&] {
        *list = nullptr;
        for (int32_t index : platform.reported_groupless ? *platform.reported_groupless : contacts_without_group()) {
            auto* element = static_cast<int32_t*>(platform_allocate(sizeof(int32_t)));
            *element = index;
            *list = g_list_append(*list, element);
        }
        if (*list != nullptr) platform.unreleased_lists.insert(*list);
        return 0;
    });
}

// GLib's own release functions, watched by the linker's --wrap, which makes these names.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void __real_g_list_free(GList* list);
void __real_g_list_free_full(GList* list, GDestroyNotify release);

void __wrap_g_list_free(GList* list)
{
    const std::lock_guard lock(platform.mutex());
    platform.unreleased_lists.erase(list);
    __real_g_list_free(list);
}

void __wrap_g_list_free_full(GList* list, GDestroyNotify release)
{
    const std::lock_guard lock(platform.mutex());
    platform.unreleased_lists.erase(list);
    __real_g_list_free_full(list, release);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

// ---- Groups ---------------------------------------------------------------------------------------------------------

static contact_group_record handed_out(const contact_group_record& group)
{
    contact_group_record record = group;
    if (platform.alter_group) platform.alter_group(record);
    return record;
}

static const contact_group_record* find_group(const char* name)
{
    for (const auto& [key, group] : platform.groups)
        if (std::strcmp(group.name, name) == 0) return &group;
    return nullptr;
}

int contact_db_service_group_get_count(int reserved, int* count, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, "", error, count, [&] {
        *count = static_cast<int>(platform.groups.size());
        return 0;
    });
}

int contact_db_service_group_get_all_records(int reserved, contact_group_record* groups, int count, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({count}), error, nullptr, [&] {
        int written = 0;
        for (const auto& [key, group] : platform.groups)
            if (written < count) groups[written++] = handed_out(group);
        return 0;
    });
}

int contact_db_service_group_get(int reserved, int key_index, contact_group_record* group, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({key_index}), error, nullptr, [&] {
        const auto found = platform.groups.find(key_index);
        if (found == platform.groups.end()) return static_cast<int>(CONTACT_ERROR_NOT_FOUND);
        *group = handed_out(found->second);
        return 0;
    });
}

int contact_db_service_group_get_id_by_name(int reserved, const char* name, int* key_index, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, quoted(name), error, nullptr, [&] {
        const contact_group_record* group = find_group(name);
        if (group == nullptr) return static_cast<int>(CONTACT_ERROR_NOT_FOUND);
        *key_index = group->group_key.index;
        return 0;
    });
}

int contact_db_service_group_exist_same_name(int reserved, const char* name, unsigned char* exists, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, quoted(name), error, nullptr, [&] {
        *exists = platform.reported_same_name.value_or(find_group(name) != nullptr);
        return 0;
    });
}

int contact_db_service_group_add(contact_group_record* group, int* error)
{
    return platform.perform(__func__, quoted(group->name), error, nullptr, [&] {
        int32_t key = 0;
        while (platform.groups.contains(key)) ++key;
        if (key >= CONTACT_GROUP_MAX) return static_cast<int>(CONTACT_ERROR_FULL);
        group->group_key.index = key;
        platform.groups[key] = *group;
        return 0;
    });
}

int contact_db_service_group_update(int reserved, int key_index, contact_group_record* group, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({key_index}) + ", " + quoted(group->name), error, nullptr, [&] {
        if (!platform.groups.contains(key_index)) return static_cast<int>(CONTACT_ERROR_NOT_FOUND);
        platform.groups[key_index] = *group;
        return 0;
    });
}

int contact_db_service_group_delete(int reserved, int key_index, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({key_index}), error, nullptr, [&] {
        if (platform.groups.erase(key_index) == 0) return static_cast<int>(CONTACT_ERROR_NOT_FOUND);
        for (stored_contact& contact : platform.contacts) contact.record.membership[key_index] = 0;
        return 0;
    });
}

int contact_db_service_group_get_members(int reserved, int key_index, int* indices, int* count, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({key_index, *count}), error, count, [&] {
        if (!platform.groups.contains(key_index)) return static_cast<int>(CONTACT_ERROR_NOT_FOUND);
        std::vector<int32_t> members;
        for (const stored_contact& contact : platform.contacts)
            if (contact.record.membership[key_index] != 0) members.push_back(contact.record.index);
        const auto reported = platform.reported_members.find(key_index);
        hand_out(reported == platform.reported_members.end() ? members : reported->second, indices, count);
        return 0;
    });
}

int contact_db_service_group_search(int reserved, const char* query, int limit, int reserved2,
                                    contact_group_record* groups, int* count, int* error, int mode)
{
    check_reserved(__func__, {reserved, reserved2});
    const std::string arguments = quoted(query) + ", " + listed({limit, reserved2, *count, mode});
    return platform.perform(__func__, arguments, error, count, [&] {
        const int capacity = *count;
        *count = 0;
        for (const auto& [key, group] : platform.groups) {
            const bool wanted = mode == 1 ? std::strcmp(group.name, query) == 0 : std::strcmp(query, "id >= 0") == 0;
            if (wanted && *count < capacity) groups[(*count)++] = handed_out(group);
        }
        return 0;
    });
}

// ---- Organizer ------------------------------------------------------------------------------------------------------

namespace {

// A text at rest, the record's pointer that leads to it in transit, and the bytes it may hold.
struct item_text_field {
    std::string stored_item::*stored;
    char* org_full_record::*attached;
    size_t limit;
};

constexpr item_text_field TEXT_FIELDS[] = {
    {&stored_item::summary, &org_full_record::summary, ORG_SUMMARY_MAX},
    {&stored_item::description, &org_full_record::description, ORG_DESCRIPTION_MAX},
    {&stored_item::location, &org_full_record::location, ORG_LOCATION_MAX},
    {&stored_item::text_172, &org_full_record::text_172, ORG_TEXT_172_MAX},
    {&stored_item::text_340, &org_full_record::text_340, ORG_TEXT_340_MAX},
    {&stored_item::text_344, &org_full_record::text_344, ORG_TEXT_344_MAX},
    {&stored_item::text_348, &org_full_record::text_348, ORG_TEXT_348_MAX},
};

} // namespace

// Copies everything but the text pointers, which the target keeps.
static void copy_scalars(org_full_record* target, const org_full_record& source)
{
    const org_full_record attached = *target;
    *target = source;
    for (const item_text_field& field : TEXT_FIELDS) target->*field.attached = attached.*field.attached;
}

static stored_item stored_from(int32_t type, int32_t index, const org_full_record& record)
{
    stored_item item;
    item.type = type;
    item.record = record;
    item.record.index = index;
    for (const item_text_field& field : TEXT_FIELDS) {
        if (record.*field.attached != nullptr) item.*field.stored = record.*field.attached;
        item.record.*field.attached = nullptr;
    }
    return item;
}

static std::vector<int32_t> item_indexes(int32_t type)
{
    std::vector<int32_t> indexes;
    for (const stored_item& item : platform.items)
        if (item.type == type) indexes.push_back(item.record.index);
    return indexes;
}

int org_db_service_connect_database(int* error)
{
    return platform.perform(__func__, "", error, nullptr, [] {
        ++platform.open_organizer_connections;
        platform.scope().reset();
        return 0;
    });
}

int org_db_service_disconnect_database(int* error)
{
    const std::lock_guard lock(platform.mutex());
    if (platform.open_organizer_connections > 0) --platform.open_organizer_connections;
    platform.scope().reset();
    return platform.perform(__func__, "", error, nullptr, [] { return 0; });
}

int org_db_service_init_full_record(org_full_record* record, int* error)
{
    return platform.perform(__func__, "", error, nullptr, [&] {
        copy_scalars(record, {});
        return 0;
    });
}

int org_db_service_free_full_record(org_full_record* record, int* error)
{
    return platform.perform(__func__, "", error, nullptr, [&] {
        for (const item_text_field& field : TEXT_FIELDS) {
            platform_free(record->*field.attached);
            record->*field.attached = nullptr;
        }
        return 0;
    });
}

int org_db_service_get_record_count(int reserved, int type, int* count, int* error)
{
    check_reserved(__func__, {reserved});
    return platform.perform(__func__, listed({type}), error, count, [&] {
        platform.scope() = type;
        *count = static_cast<int>(item_indexes(type).size());
        return 0;
    });
}

int org_db_service_get_records_id(int reserved, int type, int count, int reserved2, int* indices, int* error)
{
    check_reserved(__func__, {reserved, reserved2});
    return platform.perform(__func__, listed({type, count}), error, nullptr, [&] {
        platform.scope() = type;
        int written = count;
        hand_out(item_indexes(type), indices, &written);
        return 0;
    });
}

int org_db_service_get_record_full_field_by_index(int index, org_full_record* record, int* error)
{
    return platform.perform(__func__, listed({index}), error, nullptr, [&] {
        const stored_item* item = platform.find_item(index);
        if (item == nullptr || item->type != platform.scope().value_or(item->type))
            return static_cast<int>(ORG_ERR_RECORD_NOT_FOUND);
        copy_scalars(record, item->record);
        for (const item_text_field& field : TEXT_FIELDS) {
            char* const buffer = record->*field.attached;
            if (buffer == nullptr) continue;
            const size_t length = (item->*field.stored).copy(buffer, field.limit);
            buffer[length] = '\0';
        }
        if (platform.alter_item) platform.alter_item(*record);
        return 0;
    });
}

int org_db_service_add_record_full_field(int type, org_full_record* record, int* index, int* error)
{
    return platform.perform(__func__, listed({type}), error, nullptr, [&] {
        int32_t highest = 0;
        for (const stored_item& item : platform.items) highest = std::max(highest, item.record.index);
        *index = highest + 1;
        platform.items.push_back(stored_from(type, *index, *record));
        return 0;
    });
}

int org_db_service_update_record_full_field(int index, org_full_record* record, int* error)
{
    return platform.perform(__func__, listed({index}), error, nullptr, [&] {
        stored_item* item = platform.find_item(index);
        if (item == nullptr) return static_cast<int>(ORG_ERR_RECORD_NOT_FOUND);
        if (record->index != index) platform.violations.emplace_back("an item updated under a foreign index");
        *item = stored_from(item->type, index, *record);
        return 0;
    });
}

int org_db_service_delete_record(int index, int* error)
{
    return platform.perform(__func__, listed({index}), error, nullptr, [&] {
        const auto removed =
            std::erase_if(platform.items, [&](const stored_item& item) { return item.record.index == index; });
        return removed > 0 ? 0 : static_cast<int>(ORG_ERR_RECORD_NOT_FOUND);
    });
}

/* A host without the toolkit: loads the library at run time, drives it, unloads it.
   Usage: c_host LIBRARY again CLOSER | threads CLOSER | while-open CLOSER | no-display | other-toolkit FILE |
   register DATA_FOLDER Says what is wrong and ends with 1 at the first wrong answer. */
#include "component/selfreport_c.h"

#include <dlfcn.h>
#include <locale.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define EXPECT(condition)                                                   \
    do {                                                                    \
        if (!(condition)) {                                                 \
            fprintf(stderr, "line %d: not so: %s\n", __LINE__, #condition); \
            exit(1);                                                        \
        }                                                                   \
    } while (0)

typedef struct {
    void* library;
    const selfreport_class* (*get_class)(const char*);
    int (*can_unload_now)(void);
    int (*register_class)(void);
    int (*unregister_class)(void);
    const char* (*registration_error)(void);
    const selfreport_class* class;
} component;

static void* symbol(void* library, const char* name)
{
    void* found = dlsym(library, name);
    if (!found)
        fprintf(stderr, "no %s\n", name);
    EXPECT(found);
    return found;
}

static component load(const char* file)
{
    component loaded;
    loaded.library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (!loaded.library)
        fprintf(stderr, "%s\n", dlerror());
    EXPECT(loaded.library);
    *(void**)&loaded.get_class = symbol(loaded.library, "selfreport_get_class");
    *(void**)&loaded.can_unload_now = symbol(loaded.library, "selfreport_can_unload_now");
    *(void**)&loaded.register_class = symbol(loaded.library, "selfreport_register");
    *(void**)&loaded.unregister_class = symbol(loaded.library, "selfreport_unregister");
    *(void**)&loaded.registration_error = symbol(loaded.library, "selfreport_registration_error");
    loaded.class = loaded.get_class("clsSelfReport");
    EXPECT(loaded.class && loaded.class->size >= sizeof(selfreport_class));
    EXPECT(!loaded.get_class("clsOther") && !loaded.get_class(NULL));
    return loaded;
}

static void expect_no_error(const selfreport_class* class, const selfreport_instance* instance)
{
    if (*class->last_error(instance))
        fprintf(stderr, "%s\n", class->last_error(instance));
    EXPECT(!*class->last_error(instance));
}

static void drive(const selfreport_class* class, selfreport_instance* instance)
{
    int16_t type = 7;
    int16_t shown = 1;
    int32_t report = 42;
    EXPECT(class->edit_form(instance, &type, NULL) == 0);
    expect_no_error(class, instance);
    EXPECT(class->init(instance, "Provider=SQLite;Data Source=none.db", "标题", "1", NULL) == 0);
    expect_no_error(class, instance);
    EXPECT(class->cw_self_report(instance) == 0);
    expect_no_error(class, instance);
    EXPECT(class->cw_self_report_exe(instance, &report) == 0);
    expect_no_error(class, instance);
    EXPECT(class->edit_form(instance, &type, &shown) == 0);
    expect_no_error(class, instance);
}

static void again(const char* file)
{
    for (int round = 0; round < 20; ++round) {
        const component loaded = load(file);
        EXPECT(loaded.can_unload_now() == (round == 0));
        selfreport_instance* instance = loaded.class->create();
        EXPECT(instance && !loaded.can_unload_now());
        drive(loaded.class, instance);
        loaded.class->release(instance);
        EXPECT(!loaded.can_unload_now()); /* the toolkit runs */
        EXPECT(strcmp(setlocale(LC_ALL, NULL), "C") == 0);
        dlclose(loaded.library);
    }
}

static void* drive_from_elsewhere(void* data)
{
    const component* loaded = data;
    selfreport_instance* instance = loaded->class->create();
    int32_t report = 7;
    EXPECT(loaded->class->cw_self_report_exe(instance, &report) == 0);
    EXPECT(*loaded->class->last_error(instance));
    EXPECT(loaded->class->init(instance, "", "", "", "") == 0);
    EXPECT(*loaded->class->last_error(instance));
    loaded->class->release(instance);
    return NULL;
}

static void threads(const char* file)
{
    component loaded = load(file);
    selfreport_instance* instance = loaded.class->create();
    loaded.class->init(instance, "", "", "", "");
    for (int round = 0; round < 2; ++round) { /* before the toolkit runs, and while it does */
        pthread_t thread;
        EXPECT(pthread_create(&thread, NULL, drive_from_elsewhere, &loaded) == 0);
        pthread_join(thread, NULL);
        drive(loaded.class, instance);
    }
    loaded.class->release(instance);
}

static component open_component;
static selfreport_instance* open_instance; /* whose window is open */
static void (*before_closing)(void (*act)(void));
static int windows_open, refusals;

static void expect_refused(const selfreport_instance* instance)
{
    EXPECT(*open_component.class->last_error(instance));
    ++refusals;
}

/* As from a timer of the host, while a window is open: at first the designer, then the list over it, which
   says as it opens that there is no database. */
static void call_while_open(void)
{
    const selfreport_class* class = open_component.class;
    selfreport_instance* other = class->create();
    int16_t type = 0;
    int32_t report = 3;
    EXPECT(++windows_open <= 2);
    class->init(other, "none", "none", "none", "none");
    expect_refused(other);
    class->edit_form(other, &type, NULL);
    expect_refused(other);
    class->cw_self_report_exe(other, &report);
    expect_refused(other);
    class->cw_self_report(other);
    if (windows_open == 1)
        expect_no_error(class, other);
    else
        expect_refused(other);
    class->release(other);
    if (--windows_open == 0) {
        before_closing(NULL);
        class->release(open_instance); /* during its own call */
        open_instance = NULL;
    }
}

static void while_open(const char* file, void* closer)
{
    int16_t type = 0;
    *(void**)&before_closing = symbol(closer, "before_closing");
    open_component = load(file);
    open_instance = open_component.class->create();
    before_closing(call_while_open);
    EXPECT(open_component.class->edit_form(open_instance, &type, NULL) == 0);
    EXPECT(!open_instance && refusals == 3 + 4 + 4);
    selfreport_instance* instance = open_component.class->create();
    drive(open_component.class, instance); /* as if nothing had been */
    open_component.class->release(instance);
}

/* Windows cannot be shown, which is an error, not the end of the process. */
static void without_windows(const char* file, const char* named)
{
    const component loaded = load(file);
    selfreport_instance* instance = loaded.class->create();
    int32_t report = 42;
    for (int round = 0; round < 2; ++round) {
        EXPECT(loaded.class->cw_self_report_exe(instance, &report) == 0);
        EXPECT(strstr(loaded.class->last_error(instance), named));
        EXPECT(loaded.class->init(instance, "", "", "", "") == 0);
        expect_no_error(loaded.class, instance);
    }
    EXPECT(loaded.class->edit_form(NULL, NULL, NULL) == 0 && *loaded.class->last_error(NULL));
    loaded.class->release(instance);
    EXPECT(strcmp(setlocale(LC_ALL, NULL), "C") == 0);
}

/* The library's file as a host that knows only the class's name finds it; "" if it is not registered. */
static void look_up(const char* data_folder, char* library, size_t size)
{
    char text[4096] = "";
    snprintf(text, sizeof text, "%s/selfreport/classes/clsSelfReport.json", data_folder);
    FILE* file = fopen(text, "rb");
    library[0] = 0;
    if (!file)
        return;
    text[fread(text, 1, sizeof text - 1, file)] = 0;
    fclose(file);
    const char* key = strstr(text, "\"library\": \"");
    EXPECT(key);
    key += strlen("\"library\": \"");
    snprintf(library, size, "%.*s", (int)strcspn(key, "\""), key);
}

static void registration(const char* file, const char* data_folder)
{
    char found[4096];
    setenv("XDG_DATA_HOME", data_folder, 1);
    const component loaded = load(file);
    EXPECT(loaded.register_class() == 0 && !*loaded.registration_error());
    look_up(data_folder, found, sizeof found);
    EXPECT(load(found).class == loaded.class);
    EXPECT(loaded.unregister_class() == 0 && loaded.unregister_class() == 0);
    look_up(data_folder, found, sizeof found);
    EXPECT(!*found);
    EXPECT(loaded.can_unload_now());

    setenv("XDG_DATA_HOME", "/dev/null", 1);
    EXPECT(loaded.register_class() == -1 && strstr(loaded.registration_error(), "/dev/null"));
    EXPECT(loaded.unregister_class() == 0 && !*loaded.registration_error());
}

int main(int count, char** arguments)
{
    EXPECT(count >= 3);
    const char* file = arguments[1];
    const char* what = arguments[2];
    if (strcmp(what, "again") == 0 && count == 4 && dlopen(arguments[3], RTLD_NOW | RTLD_LOCAL))
        again(file);
    else if (strcmp(what, "threads") == 0 && count == 4 && dlopen(arguments[3], RTLD_NOW | RTLD_LOCAL))
        threads(file);
    else if (strcmp(what, "while-open") == 0 && count == 4)
        while_open(file, dlopen(arguments[3], RTLD_NOW | RTLD_LOCAL));
    else if (strcmp(what, "no-display") == 0)
        without_windows(file, "显示器");
    else if (strcmp(what, "other-toolkit") == 0 && count == 4 && dlopen(arguments[3], RTLD_NOW | RTLD_LOCAL))
        without_windows(file, strrchr(arguments[3], '/'));
    else if (strcmp(what, "register") == 0 && count == 4)
        registration(file, arguments[3]);
    else
        EXPECT(!"a known command");
    return 0;
}

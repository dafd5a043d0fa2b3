#pragma once
/* The report module for hosts that load libselfreport.so at run time. Plain C; texts are UTF-8 and end with
   0. A null text counts as an empty one. Nothing here lets an exception out or leaves the C locale changed.
 */
#include "component/export.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One instance of the class clsSelfReport. */
typedef struct selfreport_instance selfreport_instance;

/** The class: its operations in the order of its interface. Each takes the instance first. Results are 0
    (false) always; whether an operation could be carried out is told by last_error. A call during which a
   window is open that it could not show another over changes nothing but last_error, init included. */
typedef struct selfreport_class {
    uint32_t size;    /**< of this structure in bytes; fields are only ever added at its end */
    const char* name; /**< "clsSelfReport" */
    /** A new instance, to be given back with release; null if there is no memory. */
    selfreport_instance* (*create)(void);
    /** Ends an instance; null is let pass. */
    void (*release)(selfreport_instance*);
    /** Shows the designer until it is closed. is_show may be null; neither value is consulted. */
    int (*edit_form)(selfreport_instance*, int16_t* type, int16_t* is_show);
    /** Connection string, title of message boxes, id of the logged-in user, application folder. */
    int (*init)(selfreport_instance*, const char* conn_string, const char* title, const char* login_user_id,
                const char* app_path);
    /** Shows the list of reports until it is closed. */
    int (*cw_self_report)(selfreport_instance*);
    /** Shows the stored report of this id for use until it is closed; null counts as 0. */
    int (*cw_self_report_exe)(selfreport_instance*, int32_t* inter_id);
    /** Why the instance's last operation could not be carried out, "" if it was. Valid until its next one. */
    const char* (*last_error)(const selfreport_instance*);
} selfreport_class;

/** Entry point 1: the class of this name, valid as long as the library is loaded. Null: no such class. */
SELFREPORT_EXPORT const selfreport_class* selfreport_get_class(const char* name);

/** Entry point 2: 1 if no instance lives and no window was ever shown, so that the library may be unloaded;
    else 0. */
SELFREPORT_EXPORT int selfreport_can_unload_now(void);

/** Entry point 3: writes a descriptor into the user's data folder, from which a host that knows only the
    class's name learns the library's file: $XDG_DATA_HOME/selfreport/classes/clsSelfReport.json, an object
    with "class", "interface", "library" (full path) and "version". 0, or -1 if it cannot be written. */
SELFREPORT_EXPORT int selfreport_register(void);

/** Entry point 4: removes that descriptor; one that is not there is no failure. 0 or -1. */
SELFREPORT_EXPORT int selfreport_unregister(void);

/** Why this thread's last selfreport_register or selfreport_unregister returned -1; "" if it did not. */
SELFREPORT_EXPORT const char* selfreport_registration_error(void);

#ifdef __cplusplus
}
#endif

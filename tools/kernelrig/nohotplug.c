// Preloaded into the rig's host for one scenario: the plug-in's udev monitor
// listens to a subsystem that never changes, so an open panel that is
// unplugged stays open (nobody recounts the panels and closes it).

#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>

struct udev_monitor;

typedef int (*match_fn)(struct udev_monitor *, const char *, const char *);

int udev_monitor_filter_add_match_subsystem_devtype(struct udev_monitor *monitor,
                                                    const char *subsystem, const char *devtype)
{
    fprintf(stderr, "nohotplug: %s monitor moved to rig-nothing\n", subsystem);
    match_fn real = (match_fn)dlsym(RTLD_NEXT, "udev_monitor_filter_add_match_subsystem_devtype");
    return real ? real(monitor, "rig-nothing", devtype) : -1;
}

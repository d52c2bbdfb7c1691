/*
 * dialix-uhidpanel: a Dialix panel made by the kernel's uhid driver, for the
 * kernel rig. The kernel turns it into a real HID device on bus USB (vendor
 * 0x1FC9, product 0x0003) with a hidraw node, which hidapi cannot tell from a
 * panel on a cable.
 *
 *   dialix-uhidpanel SERIAL VARIANT [ACTION...]
 *
 * VARIANT is the report descriptor:
 *   plain17  no report IDs, 17-byte input report (reads as 17 bytes)
 *   id1      report ID 1, 16-byte input report (reads as 17 bytes, the ID first)
 *   plain16  no report IDs, 16-byte input report (reads as 16 bytes)
 * Every variant has a 1-byte LED output report.
 *
 * The actions run in order; between them and afterwards every event of the
 * device is printed on stdout, one line each: "open", "close", and
 * "output XX XX" for every output report (the LED reports) with its bytes.
 *   wait-open N      wait (up to 60 s) until the hidraw node has been opened N
 *                    times in all (the first open of all its handles counts)
 *   wait-outputs N   wait (up to 60 s) until N output reports have arrived in all
 *   sleep MS         keep serving the device for MS milliseconds
 *   key N down|up    switch bit N (keys 0..14, dial pushes 15..18, PTT 19,
 *                    dash 20, dot 21) closed or open; one input report
 *   turn D V         dial D (0..3) moved by V (-128..127); one input report
 *   mark V           writes V to the scratch register of the guest's second
 *                    UART (I/O port 0x2ff), where QEMU's serial_write trace
 *                    shows it: a time mark for the serial-line measurements
 *   hold             print "hold", then serve until SIGTERM or SIGINT
 * The device is destroyed when the program ends; "destroyed" is printed then.
 */
#include <errno.h>
#include <fcntl.h>
#include <linux/uhid.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static const unsigned char plain17[] = {
    0x06, 0x00, 0xff, 0x09, 0x01, 0xa1, 0x01, /* vendor page, application */
    0x15, 0x00, 0x26, 0xff, 0x00, 0x75, 0x08, /* bytes 0..255 */
    0x95, 0x11, 0x09, 0x01, 0x81, 0x02, /* 17 bytes in */
    0x95, 0x01, 0x09, 0x02, 0x91, 0x02, 0xc0, /* 1 byte out */
};
static const unsigned char id1[] = {
    0x06, 0x00, 0xff, 0x09, 0x01, 0xa1, 0x01, 0x85, 0x01, /* report ID 1 */
    0x15, 0x00, 0x26, 0xff, 0x00, 0x75, 0x08, 0x95, 0x10, 0x09, 0x01, 0x81, 0x02, /* 16 bytes in */
    0x95, 0x01, 0x09, 0x02, 0x91, 0x02, 0xc0,
};
static const unsigned char plain16[] = {
    0x06, 0x00, 0xff, 0x09, 0x01, 0xa1, 0x01, 0x15, 0x00, 0x26,
    0xff, 0x00, 0x75, 0x08, 0x95, 0x10, 0x09, 0x01, 0x81, 0x02, /* 16 bytes in */
    0x95, 0x01, 0x09, 0x02, 0x91, 0x02, 0xc0,
};

static int fd = -1;
static int opened, outputs;
static volatile sig_atomic_t stop;
static unsigned char report[17]; /* as the host reads it: byte 0, switches 1..3, dials 13..16 */
static int reportSize = 17, reportOffset; /* the ID byte is sent, not declared */

static void onSignal(int sig)
{
    (void)sig;
    stop = 1;
}

static long long nowMs(void)
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return ts.tv_sec * 1000LL + ts.tv_nsec / 1000000;
}

static int post(const struct uhid_event *ev)
{
    if (write(fd, ev, sizeof *ev) != (ssize_t)sizeof *ev) {
        fprintf(stderr, "uhidpanel: write: %s\n", strerror(errno));
        return -1;
    }
    return 0;
}

/* Handles one event of the device. */
static void receive(void)
{
    struct uhid_event ev;
    memset(&ev, 0, sizeof ev);
    if (read(fd, &ev, sizeof ev) <= 0)
        return;
    switch (ev.type) {
    case UHID_OPEN:
        ++opened;
        printf("open\n");
        break;
    case UHID_CLOSE:
        printf("close\n");
        break;
    case UHID_OUTPUT:
        ++outputs;
        printf("output");
        for (int i = 0; i < ev.u.output.size; ++i)
            printf(" %02x", ev.u.output.data[i]);
        printf("\n");
        break;
    case UHID_GET_REPORT: {
        struct uhid_event reply = {.type = UHID_GET_REPORT_REPLY};
        reply.u.get_report_reply.id = ev.u.get_report.id;
        reply.u.get_report_reply.err = EIO;
        post(&reply);
        break;
    }
    case UHID_SET_REPORT: {
        struct uhid_event reply = {.type = UHID_SET_REPORT_REPLY};
        reply.u.set_report_reply.id = ev.u.set_report.id;
        reply.u.set_report_reply.err = EIO;
        post(&reply);
        break;
    }
    default:
        break;
    }
    fflush(stdout);
}

/* Serves the device until `deadline` (ms) or, when `until` is set, until it holds. */
static int serve(long long deadline, int (*until)(int), int arg)
{
    while (!stop) {
        if (until && until(arg))
            return 0;
        long long left = deadline - nowMs();
        if (left <= 0)
            return until ? -1 : 0;
        struct pollfd p = {fd, POLLIN, 0};
        if (poll(&p, 1, left > 100 ? 100 : (int)left) > 0)
            receive();
    }
    return 0;
}

static int isOpen(int n)
{
    return opened >= n;
}

static int hasOutputs(int n)
{
    return outputs >= n;
}

static int input(void)
{
    struct uhid_event ev = {.type = UHID_INPUT2};
    ev.u.input2.size = (unsigned short)(reportSize - reportOffset);
    memcpy(ev.u.input2.data, report + reportOffset, ev.u.input2.size);
    return post(&ev);
}

static int mark(int value)
{
    const int port = open("/dev/port", O_WRONLY);
    const unsigned char byte = (unsigned char)value;
    const int ok = port >= 0 && pwrite(port, &byte, 1, 0x2ff) == 1;
    if (port >= 0)
        close(port);
    return ok ? 0 : -1;
}

int main(int argc, char **argv)
{
    if (argc < 3) {
        fprintf(stderr, "usage: %s SERIAL plain17|id1|plain16 [ACTION...]\n", argv[0]);
        return 64;
    }
    struct uhid_event create = {.type = UHID_CREATE2};
    const unsigned char *rd = plain17;
    size_t rdSize = sizeof plain17;
    if (strcmp(argv[2], "id1") == 0) {
        rd = id1;
        rdSize = sizeof id1;
        report[0] = 0x01;
    } else if (strcmp(argv[2], "plain16") == 0) {
        rd = plain16;
        rdSize = sizeof plain16;
        reportOffset = 1; /* bytes 1..16 of the panel's layout */
    } else if (strcmp(argv[2], "plain17") != 0) {
        fprintf(stderr, "uhidpanel: unknown variant %s\n", argv[2]);
        return 64;
    }
    snprintf((char *)create.u.create2.name, sizeof create.u.create2.name, "Dialix");
    snprintf((char *)create.u.create2.uniq, sizeof create.u.create2.uniq, "%s", argv[1]);
    snprintf((char *)create.u.create2.phys, sizeof create.u.create2.phys, "uhid-%s", argv[1]);
    memcpy(create.u.create2.rd_data, rd, rdSize);
    create.u.create2.rd_size = (unsigned short)rdSize;
    create.u.create2.bus = 0x03; /* BUS_USB */
    create.u.create2.vendor = 0x1fc9;
    create.u.create2.product = 0x0003;
    create.u.create2.version = 0x0100;

    signal(SIGTERM, onSignal);
    signal(SIGINT, onSignal);
    fd = open("/dev/uhid", O_RDWR | O_CLOEXEC);
    if (fd < 0 || post(&create) < 0) {
        fprintf(stderr, "uhidpanel: /dev/uhid: %s\n", strerror(errno));
        return 1;
    }
    printf("created %s %s\n", argv[1], argv[2]);
    fflush(stdout);

    int status = 0;
    for (int i = 3; i < argc && !stop && status == 0; ++i) {
        const char *a = argv[i];
        const char *next = i + 1 < argc ? argv[i + 1] : "0";
        if (strcmp(a, "wait-open") == 0) {
            status = serve(nowMs() + 60000, isOpen, atoi(next));
            ++i;
        } else if (strcmp(a, "wait-outputs") == 0) {
            status = serve(nowMs() + 60000, hasOutputs, atoi(next));
            ++i;
        } else if (strcmp(a, "sleep") == 0) {
            status = serve(nowMs() + atoi(next), NULL, 0);
            ++i;
        } else if (strcmp(a, "key") == 0 && i + 2 < argc) {
            const int bit = atoi(argv[i + 1]);
            const int down = strcmp(argv[i + 2], "down") == 0;
            if (bit < 0 || bit > 23) {
                status = 64;
                break;
            }
            unsigned char *byte = &report[1 + bit / 8];
            *byte = down ? (unsigned char)(*byte | 1u << (bit % 8))
                         : (unsigned char)(*byte & ~(1u << (bit % 8)));
            status = input();
            i += 2;
        } else if (strcmp(a, "turn") == 0 && i + 2 < argc) {
            const int dial = atoi(argv[i + 1]);
            if (dial < 0 || dial > 3) {
                status = 64;
                break;
            }
            report[13 + dial] = (unsigned char)(signed char)atoi(argv[i + 2]);
            status = input();
            report[13 + dial] = 0;
            i += 2;
        } else if (strcmp(a, "mark") == 0) {
            status = mark((int)strtol(next, NULL, 0));
            ++i;
        } else if (strcmp(a, "hold") == 0) {
            printf("hold\n");
            fflush(stdout);
            status = serve(nowMs() + 24LL * 3600 * 1000, NULL, 0);
        } else {
            fprintf(stderr, "uhidpanel: bad action %s\n", a);
            status = 64;
        }
        if (status != 0)
            fprintf(stderr, "uhidpanel: %s failed\n", a);
    }
    serve(nowMs() + 50, NULL, 0); /* output reports still under way */
    struct uhid_event destroy = {.type = UHID_DESTROY};
    post(&destroy);
    close(fd);
    printf("destroyed\n");
    return status;
}

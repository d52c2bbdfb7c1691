/* dialix-winenv NAME=VALUE ... -- PROGRAM [ARGUMENT ...]
 *
 * Starts PROGRAM with the given variables added to its environment, waits for
 * it and returns its exit code. Wine does not hand Unix variables whose names
 * begin with QT_ to Windows programs; scripts/windows/wine-run.sh passes them
 * through this starter instead. */
#include <windows.h>

#include <shellapi.h> /* after windows.h, which it needs */

#include <stdio.h>
#include <stdlib.h>
#include <wchar.h>

/* Appends one argument as CommandLineToArgvW and the C runtime split it again. */
static wchar_t *appendQuoted(wchar_t *out, const wchar_t *arg)
{
    if (*arg && !wcspbrk(arg, L" \t\n\v\"")) {
        size_t n = wcslen(arg);
        wmemcpy(out, arg, n);
        return out + n;
    }
    *out++ = L'"';
    for (const wchar_t *p = arg;; ++p) {
        size_t backslashes = 0;
        while (*p == L'\\') {
            ++backslashes;
            ++p;
        }
        if (*p == L'\0') {
            for (size_t i = 0; i < 2 * backslashes; ++i)
                *out++ = L'\\';
            break;
        }
        if (*p == L'"') {
            for (size_t i = 0; i < 2 * backslashes + 1; ++i)
                *out++ = L'\\';
        } else {
            for (size_t i = 0; i < backslashes; ++i)
                *out++ = L'\\';
        }
        *out++ = *p;
    }
    *out++ = L'"';
    return out;
}

int main(void)
{
    int argc = 0;
    wchar_t **argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (!argv)
        return 125;
    int i = 1;
    for (; i < argc && wcscmp(argv[i], L"--") != 0; ++i) {
        wchar_t *eq = wcschr(argv[i], L'=');
        if (!eq || eq == argv[i]) {
            fwprintf(stderr, L"dialix-winenv: not NAME=VALUE: %ls\n", argv[i]);
            return 125;
        }
        *eq = L'\0';
        SetEnvironmentVariableW(argv[i], eq + 1);
    }
    if (++i >= argc) {
        fwprintf(stderr, L"dialix-winenv NAME=VALUE ... -- PROGRAM [ARGUMENT ...]\n");
        return 125;
    }
    size_t size = 1;
    for (int k = i; k < argc; ++k)
        size += 3 * wcslen(argv[k]) + 3;
    wchar_t *commandLine = calloc(size, sizeof(wchar_t));
    wchar_t *end = commandLine;
    for (int k = i; k < argc; ++k) {
        if (k > i)
            *end++ = L' ';
        end = appendQuoted(end, argv[k]);
    }
    *end = L'\0';

    STARTUPINFOW startup;
    ZeroMemory(&startup, sizeof(startup));
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process;
    if (!CreateProcessW(NULL, commandLine, NULL, NULL, TRUE, 0, NULL, NULL, &startup, &process)) {
        fwprintf(stderr, L"dialix-winenv: cannot start %ls (error %lu)\n", argv[i], GetLastError());
        return 127;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    return (int)code;
}

#pragma once

#include <string>
#include <vector>

#include "nyr/platform/export.h"
#include "nyr/util/profile_keys.h"

// The library's settings file: "[Section]" lines followed by "Entry=Value"
// lines, read and written by the classic private-profile rules. Names compare
// without regard to ASCII case and the first match wins; names and values
// are trimmed of blanks, a value loses one pair of enclosing quotes and is
// cut to 4096 characters on reading. A write changes one line and keeps
// every other byte, under a lock and through a renamed temporary, so a crash
// leaves the old or the new file; it is refused (0, file untouched) when it
// would change how other lines read. The README's "Settings file" section
// has the whole set of rules, durability and the cache.
//
// Reads fall back to the caller's default when the file, section or entry is
// absent; writes return 1 on success and 0 on failure and never throw;
// NyrGetProfileError() says why. Safe to call from any thread.
class CNyrHostProfile;

// The operations, all static; the section and entry names the library uses
// come from the accessors of CNyrProfileKeys, inherited.
class NYR_EXPORT CNyrProfileEntries : public CNyrProfileKeys
{
public:
    // File-addressed operations; `file` is a full path. Writes do not create
    // missing folders.

    // The entry read as a decimal integer (leading blanks, sign, digits; text
    // after the digits is ignored, no digits read as 0); `defaultValue` when
    // the entry is absent or empty. The result is unsigned and wraps modulo
    // 2^32 as the platform's reading does: "4294967295" reads as 4294967295,
    // "4294967296" as 0, "-5" as 4294967291 (cast to int for -5).
    static unsigned int ReadProfileInt(const std::string& file, const std::string& section, const std::string& entry,
                                       int defaultValue);
    static int WriteProfileInt(const std::string& file, const std::string& section, const std::string& entry,
                               int value);
    static std::string ReadProfileString(const std::string& file, const std::string& section,
                                         const std::string& entry, const std::string& defaultValue);
    static int WriteProfileStringA(const std::string& file, const std::string& section, const std::string& entry,
                                   const std::string& value);
    // Empties `values`, then reads the "%d;" form: every element ends in ";"
    // (text after the last ";" is ignored, so a value without its final ";"
    // loses its last element: intended); an element reads as atoi reads it; an
    // empty element (";" where an element should start) ends the reading and
    // keeps what was read before it.
    static void ReadProfileIntVector(const std::string& file, const std::string& section, const std::string& entry,
                                     std::vector<int>& values);
    static int WriteProfileIntVector(const std::string& file, const std::string& section, const std::string& entry,
                                     const std::vector<int>& values);

    // The integer-vector form read from and written to the host
    // application's profile store instead of a file; same rules as above.
    static void ReadProfileIntVector(CNyrHostProfile& host, const std::string& section, const std::string& entry,
                                     std::vector<int>& values);
    static int WriteProfileIntVector(CNyrHostProfile& host, const std::string& section, const std::string& entry,
                                     const std::vector<int>& values);

    // The same on the library's own settings file, NyrGetProfilePath().
    // Writes create the file's missing folders (mode 0700) first.
    static unsigned int ReadNyrProfileInt(const std::string& section, const std::string& entry, int defaultValue);
    static int WriteNyrProfileInt(const std::string& section, const std::string& entry, int value);
    static std::string ReadNyrProfileString(const std::string& section, const std::string& entry,
                                            const std::string& defaultValue);
    static int WriteNyrProfileString(const std::string& section, const std::string& entry, const std::string& value);
    static void ReadNyrProfileIntVector(const std::string& section, const std::string& entry,
                                        std::vector<int>& values);
    static int WriteNyrProfileIntVector(const std::string& section, const std::string& entry,
                                        const std::vector<int>& values);
};

// The host application's own profile store, reached by the host-application
// variants of the integer-vector operations. Whether it keeps its strings in
// a file or elsewhere is the host's choice. The widgets library implements it
// over QSettings (CNyrSettingsProfile, nyrwidgets/frame/settings_profile.h).
class NYR_EXPORT CNyrHostProfile
{
public:
    virtual ~CNyrHostProfile();
    // The stored text of `entry` in `section`, or `defaultValue` when absent.
    virtual std::string GetProfileString(const std::string& section, const std::string& entry,
                                         const std::string& defaultValue) = 0;
    // Stores the text; non-zero on success.
    virtual int WriteProfileString(const std::string& section, const std::string& entry,
                                   const std::string& value) = 0;
};

// Where the library's settings file lives. The default is
// $XDG_CONFIG_HOME/Nyr240.INI ($HOME/.config when XDG_CONFIG_HOME is unset or
// not absolute), decided by the first NyrGetProfilePath() and kept; the folder
// is created on the first write. Set the path or prefix once at start-up,
// before any setting is read.

// Sets the path as it stands (no checking); "" goes back to "not decided".
NYR_EXPORT void NyrSetProfilePath(const std::string& path);
// Sets the path to the default folder + prefix + "." + default file name:
// "Survey" gives ".../Survey.Nyr240.INI". Always applied to the default path,
// never to a path set earlier.
NYR_EXPORT void NyrSetProfilePrefix(const std::string& prefix);
// The path; the default path when none is set yet (and keeps it).
NYR_EXPORT std::string NyrGetProfilePath();

// How long a settings write waits for another process's lock on the file, in
// milliseconds (5000 unless set; 0: not at all). Process-wide.
NYR_EXPORT void NyrSetProfileLockTimeout(unsigned milliseconds);
NYR_EXPORT unsigned NyrGetProfileLockTimeout();

// Why the calling thread's last read or write of a settings file could not
// use the file, as a text of the text table ("The settings file PATH is locked
// by another program."); empty after a success and after a read that found no
// file (which reads as absent).
NYR_EXPORT std::string NyrGetProfileError();

#pragma once

// The values of a message box's style word and of its answers, shared by the
// toolkit-free core (NyrMessageBox and its hook in ui_hooks.h) and the
// widgets' message boxes. The low three groups are the platform's own
// message-box values, so code written for them reads the same here.

// Style word of a message box: the platform's message-box style values plus
// flags of the library's own for the extended buttons. One value of each
// group may be combined with any of the extended-button flags.
enum eNyrMessageBoxStyle : unsigned
{
    // Button sets (low nibble). Values 7 to 15 show the OK set.
    NYR_MB_OK = 0x0,                 // OK
    NYR_MB_OKCANCEL = 0x1,           // OK, Cancel
    NYR_MB_ABORTRETRYIGNORE = 0x2,   // Abort, Retry, Ignore
    NYR_MB_YESNOCANCEL = 0x3,        // Yes, No, Cancel
    NYR_MB_YESNO = 0x4,              // Yes, No
    NYR_MB_RETRYCANCEL = 0x5,        // Retry, Cancel
    NYR_MB_CANCELTRYCONTINUE = 0x6,  // Try again, Continue, Cancel
    NYR_MB_TYPEMASK = 0xF,

    // Icons (second nibble). 0 and values other than these show none.
    NYR_MB_ICONERROR = 0x10,
    NYR_MB_ICONQUESTION = 0x20,
    NYR_MB_ICONWARNING = 0x30,
    NYR_MB_ICONINFORMATION = 0x40,
    NYR_MB_ICONMASK = 0xF0,

    // Default button: the first to fourth button of the row, counted from the
    // left. A number beyond the last button falls back to the first.
    NYR_MB_DEFBUTTON1 = 0x000,
    NYR_MB_DEFBUTTON2 = 0x100,
    NYR_MB_DEFBUTTON3 = 0x200,
    NYR_MB_DEFBUTTON4 = 0x300,
    NYR_MB_DEFMASK = 0xF00,

    // The library's extended buttons; each adds one button to the set unless
    // the set already shows its result.
    NYR_MB_OKTOALL = 0x01000000,    // "OK to a&ll"   -> NYR_IDOKTOALL
    NYR_MB_YESTOALL = 0x02000000,   // "Y&es to all"  -> NYR_IDYESTOALL
    NYR_MB_NOTOALL = 0x04000000,    // "No &to all"   -> NYR_IDNOTOALL
    NYR_MB_IGNOREALL = 0x08000000,  // "I&gnore all"  -> NYR_IDIGNOREALL
                                    // "&Skip" answers NYR_IDIGNORE: it is the Ignore button under another
                                    // caption (an Ignore button of the set reads "&Skip" instead).
    NYR_MB_SKIP = 0x10000000,
    // "Skip &all" answers NYR_IDIGNOREALL: the Ignore-all button under another
    // caption (with NYR_MB_IGNOREALL too, that one button reads "Skip &all").
    NYR_MB_SKIPALL = 0x20000000,
};

// Result codes of a message box; also the remembered answers. The first nine
// are the platform's standard message-box results, 101 to 104 the library's.
enum eNyrMessageBoxResult : int
{
    NYR_IDOK = 1,
    NYR_IDCANCEL = 2,
    NYR_IDABORT = 3,
    NYR_IDRETRY = 4,
    NYR_IDIGNORE = 5,
    NYR_IDYES = 6,
    NYR_IDNO = 7,
    NYR_IDTRYAGAIN = 10,
    NYR_IDCONTINUE = 11,
    NYR_IDOKTOALL = 101,
    NYR_IDYESTOALL = 102,
    NYR_IDNOTOALL = 103,
    NYR_IDIGNOREALL = 104,
};

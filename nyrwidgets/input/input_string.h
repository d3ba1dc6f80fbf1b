#pragma once

#include <memory>
#include <string>

#include "nyrwidgets/input/input_control.h"

// A text (UTF-8), kept as typed, blanks included; a text of blanks only
// counts as empty. With a maximum length (in characters) no keystroke can
// make it longer; a longer text the program set is kept whole and refused
// by validation with "Text must not be longer than %MAX characters" (NYR_IDS_INPUT_TOO_LONG).
class NYR_EXPORT CNyrInputString : public CNyrInputControl
{
    Q_OBJECT
public:
    explicit CNyrInputString(QWidget* parent = nullptr);
    ~CNyrInputString() override;

    int Kind() const override;
    // The text held; empty for an empty field.
    std::string GetValue() const;
    void SetValue(const std::string& text);
    // 0 (the default) for no limit.
    void SetMaxChars(int characters);
    int GetMaxChars() const;

protected:
    QString Render(const std::any& value) const override;
    bool Read(const QString& text, std::any& value, long form) const override;
    bool MayBecomeValid(const QString& text) const override;
    int RangeSide(const std::any& value) const override;
    std::string RangeMessage(int side) const override;
    std::string BoundText(bool maximum) const override;
    unsigned int InvalidTextId() const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// The name of a file or folder, blanks around it dropped. Relative names are
// taken from GetBaseFolder() (the working folder unless set). What must be
// true of it (eMode):
//   eFileMustExist    an existing file, not a folder ("File does not exist", NYR_IDS_INPUT_NO_FILE);
//   eFolderMustExist  an existing folder ("Folder does not exist", NYR_IDS_INPUT_NO_FOLDER);
//   eMayBeNew         a new or existing file whose folder exists (NYR_IDS_INPUT_NO_FOLDER when
//                     it does not).
// Refused with "Invalid file name" (NYR_IDS_INPUT_BAD_FILE_NAME): a control character, a name
// longer than 4095 bytes or with a part longer than 255 bytes, a file name
// ending in '/'.
//
// A browse button inside the field (and F4 or Alt+Down in it) browses with
// CNyrBrowse (the kind of the target, a file to save under in eMayBeNew,
// titled with the library's browse title for the target, texts
// NYR_IDS_BROWSE_FOLDER_TITLE-NYR_IDS_BROWSE_FILE_TITLE), starting at the field's name; the name picked replaces the
// text as one undoable step and is validated.
class NYR_EXPORT CNyrInputFileName : public CNyrInputControl
{
    Q_OBJECT
public:
    enum eMode : int { eFileMustExist = 0, eFolderMustExist = 1, eMayBeNew = 2 };
    // What the browse dialog looks for; each has its title.
    enum eBrowseTarget : int {
        eBrowseFile = 0,        // "Browse for File", all files
        eBrowseFolder = 1,      // "Browse for Folder"
        eBrowseExecutable = 2,  // "Browse for Executable", all files
        eBrowseProgram = 3,     // "Browse for Program", all files
        eBrowseLibrary = 4,     // "Browse for Library", libraries (*.so) and all files
    };

    explicit CNyrInputFileName(QWidget* parent = nullptr, eMode mode = eFileMustExist);
    ~CNyrInputFileName() override;

    int Kind() const override;
    // The name as typed, trimmed; empty for an empty field.
    std::string GetValue() const;
    void SetValue(const std::string& name);
    // The name made absolute against the base folder; empty for an empty field.
    std::string GetAbsolutePath() const;
    // Sets the target too: eBrowseFolder for folders, eBrowseFile otherwise.
    void SetMode(eMode mode);
    eMode GetMode() const;
    void SetBrowseTarget(eBrowseTarget target);
    eBrowseTarget GetBrowseTarget() const;
    void SetBaseFolder(const std::string& folder);
    std::string GetBaseFolder() const;

    // Opens the browse dialog; true when a name was picked.
    bool Browse();

protected:
    QString Render(const std::any& value) const override;
    bool Read(const QString& text, std::any& value, long form) const override;
    bool MayBecomeValid(const QString& text) const override;
    unsigned int InvalidTextId() const override;
    unsigned int CheckValue(const std::any& value) const override;
    void keyPressEvent(QKeyEvent* e) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

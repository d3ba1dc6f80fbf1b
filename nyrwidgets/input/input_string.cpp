#include "nyrwidgets/input/input_string.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QStyle>
#include <algorithm>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyrwidgets/app/browse.h"

namespace {

// Characters, not UTF-16 units: a character beyond the BMP counts once.
qsizetype Chars(const QString& text)
{
    return text.size() - std::count_if(text.begin(), text.end(), [](QChar c) { return c.isLowSurrogate(); });
}

constexpr qsizetype kMaxPathBytes = 4095;
constexpr qsizetype kMaxPartBytes = 255;

bool HasControl(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7F; });
}

}  // namespace

// ---------------------------------------------------------------------------
// Text

struct CNyrInputString::Private
{
    int maxChars = 0;
    // Keystrokes may not make the text longer than this: the maximum, or a
    // longer text the program set, so that such a text can be shortened.
    qsizetype typingLimit = 0;
};

CNyrInputString::CNyrInputString(QWidget* parent) : CNyrInputControl(parent), d(new Private)
{
}

CNyrInputString::~CNyrInputString() = default;

int CNyrInputString::Kind() const
{
    return NYR_INPUT_STRING;
}

std::string CNyrInputString::GetValue() const
{
    return HeldValueOr(std::string());
}

void CNyrInputString::SetValue(const std::string& text)
{
    const QString shown = QString::fromStdString(text);
    d->typingLimit = std::max<qsizetype>(d->maxChars, Chars(shown));
    SetHeldValue(shown.trimmed().isEmpty() ? std::any() : std::any(text));
}

void CNyrInputString::SetMaxChars(int characters)
{
    d->maxChars = std::max(characters, 0);
    d->typingLimit = d->maxChars;
}

int CNyrInputString::GetMaxChars() const
{
    return d->maxChars;
}

QString CNyrInputString::Render(const std::any& value) const
{
    return QString::fromStdString(std::any_cast<std::string>(value));
}

bool CNyrInputString::Read(const QString& text, std::any& value, long) const
{
    value = text.toStdString();
    return true;
}

bool CNyrInputString::MayBecomeValid(const QString& text) const
{
    return d->maxChars == 0 || Chars(text) <= d->typingLimit;
}

int CNyrInputString::RangeSide(const std::any& value) const
{
    return d->maxChars > 0 && Chars(Render(value)) > d->maxChars ? 1 : 0;
}

std::string CNyrInputString::RangeMessage(int) const
{
    return BoundMessage(NYR_IDS_INPUT_TOO_LONG);
}

std::string CNyrInputString::BoundText(bool maximum) const
{
    return maximum && d->maxChars > 0 ? std::to_string(d->maxChars) : std::string();
}

unsigned int CNyrInputString::InvalidTextId() const
{
    return 0;  // every text reads: an owner that refuses one gives its own message
}

// ---------------------------------------------------------------------------
// File name

struct CNyrInputFileName::Private
{
    eMode mode = eFileMustExist;
    eBrowseTarget target = eBrowseFile;
    QString base;
};

CNyrInputFileName::CNyrInputFileName(QWidget* parent, eMode mode) : CNyrInputControl(parent), d(new Private)
{
    SetMode(mode);
    QAction* browse = addAction(style()->standardIcon(QStyle::SP_DirOpenIcon), QLineEdit::TrailingPosition);
    browse->setObjectName(QStringLiteral("browse"));
    browse->setToolTip(QString::fromStdString(NyrLoadString(56118)));
    connect(browse, &QAction::triggered, this, [this] { Browse(); });
}

CNyrInputFileName::~CNyrInputFileName() = default;

int CNyrInputFileName::Kind() const
{
    return NYR_INPUT_FILENAME;
}

std::string CNyrInputFileName::GetValue() const
{
    return HeldValueOr(std::string());
}

void CNyrInputFileName::SetValue(const std::string& name)
{
    std::any value;
    SetHeldValue(Read(QString::fromStdString(name), value, 0) ? value : std::any());
    if (!HeldValue().has_value() && !name.empty())
        setText(QString::fromStdString(name));  // kept as given, for the user to correct
}

std::string CNyrInputFileName::GetAbsolutePath() const
{
    const std::string name = GetValue();
    if (name.empty())
        return {};
    const QDir base(d->base.isEmpty() ? QDir::currentPath() : d->base);
    return QDir::cleanPath(base.absoluteFilePath(QString::fromStdString(name))).toStdString();
}

void CNyrInputFileName::SetMode(eMode mode)
{
    d->mode = mode;
    d->target = mode == eFolderMustExist ? eBrowseFolder : eBrowseFile;
}

CNyrInputFileName::eMode CNyrInputFileName::GetMode() const
{
    return d->mode;
}

void CNyrInputFileName::SetBrowseTarget(eBrowseTarget target)
{
    d->target = target;
}

CNyrInputFileName::eBrowseTarget CNyrInputFileName::GetBrowseTarget() const
{
    return d->target;
}

void CNyrInputFileName::SetBaseFolder(const std::string& folder)
{
    d->base = QString::fromStdString(folder);
}

std::string CNyrInputFileName::GetBaseFolder() const
{
    return d->base.toStdString();
}

bool CNyrInputFileName::Browse()
{
    static constexpr unsigned int kTitles[] = {NYR_IDS_BROWSE_FILE_TITLE, NYR_IDS_BROWSE_FOLDER_TITLE,
                                               NYR_IDS_BROWSE_EXECUTABLE_TITLE, NYR_IDS_BROWSE_PROGRAM_TITLE,
                                               NYR_IDS_BROWSE_LIBRARY_TITLE};
    static constexpr CNyrBrowse::eKind kKinds[] = {CNyrBrowse::eFile, CNyrBrowse::eFolder, CNyrBrowse::eExecutable,
                                                   CNyrBrowse::eProgram, CNyrBrowse::eLibrary};
    const int target = std::clamp(static_cast<int>(d->target), 0, 4);
    // A name that may be new is chosen as one to save under; the host
    // decides what to do with an existing file.
    const CNyrBrowse::eKind kind =
        d->mode == eMayBeNew && kKinds[target] == CNyrBrowse::eFile ? CNyrBrowse::eSaveFile : kKinds[target];
    const QString name = CNyrBrowse::Browse(this, kind, {}, QString::fromStdString(GetAbsolutePath()), {},
                                            QString::fromStdString(NyrLoadString(kTitles[target])));
    if (name.isEmpty())
        return false;
    ReplaceTextAsStep(name, {});
    Validate();
    return true;
}

QString CNyrInputFileName::Render(const std::any& value) const
{
    return QString::fromStdString(std::any_cast<std::string>(value));
}

bool CNyrInputFileName::Read(const QString& text, std::any& value, long) const
{
    const QString name = text.trimmed();
    const QByteArray bytes = name.toUtf8();
    if (name.isEmpty() || HasControl(name) || bytes.size() > kMaxPathBytes)
        return false;
    qsizetype part = 0;  // bytes of the part so far
    for (char c : bytes) {
        part = c == '/' ? 0 : part + 1;
        if (part > kMaxPartBytes)
            return false;
    }
    if (d->mode != eFolderMustExist && bytes.endsWith('/'))
        return false;
    value = bytes.toStdString();
    return true;
}

bool CNyrInputFileName::MayBecomeValid(const QString& text) const
{
    return !HasControl(text) && text.size() <= kMaxPathBytes;
}

unsigned int CNyrInputFileName::InvalidTextId() const
{
    return NYR_IDS_INPUT_BAD_FILE_NAME;
}

unsigned int CNyrInputFileName::CheckValue(const std::any& value) const
{
    const QDir base(d->base.isEmpty() ? QDir::currentPath() : d->base);
    const QFileInfo info(base.absoluteFilePath(QString::fromStdString(std::any_cast<std::string>(value))));
    switch (d->mode) {
    case eFileMustExist:
        if (!info.exists() || info.isDir())
            return NYR_IDS_INPUT_NO_FILE;
        break;
    case eFolderMustExist:
        if (!info.isDir())
            return NYR_IDS_INPUT_NO_FOLDER;
        break;
    case eMayBeNew:
        if (info.isDir())
            return NYR_IDS_INPUT_BAD_FILE_NAME;  // a folder cannot become the file
        if (!QFileInfo(info.absolutePath()).isDir())
            return NYR_IDS_INPUT_NO_FOLDER;
        break;
    }
    return 0;
}

void CNyrInputFileName::keyPressEvent(QKeyEvent* e)
{
    // The keys of a drop-down list open the browse dialog.
    if ((e->key() == Qt::Key_F4 && e->modifiers() == Qt::NoModifier) ||
        (e->key() == Qt::Key_Down && e->modifiers() == Qt::AltModifier)) {
        Browse();
        e->accept();
        return;
    }
    CNyrInputControl::keyPressEvent(e);
}

#include "nyrwidgets/views/list_view_save_as_dlg_cv.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/frame/ui_hooks.h"
#include "nyr/platform/ascii_p.h"
#include "nyr/platform/string_format.h"
#include "nyr/platform/system_error.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/app/browse.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/frame/wait_cursor.h"
#include "nyrwidgets/views/list_view.h"
#include "nyrwidgets/views/views_text_p.h"

using nyr::views_detail::Text;

namespace {

// The longest header label written, in bytes (the label buffer of the list
// control).
constexpr std::size_t kMaxLabel = 260;
// Bytes gathered before a write to the file.
constexpr std::size_t kWriteChunk = 1 << 20;

// Trims `text` (bytes of multibyte characters never count as blanks),
// replaces the delimiter inside it and appends it to `line`.
void AppendCell(std::string& line, const std::string& text, char delimiter, char replacement)
{
    const std::size_t start = line.size();
    line.append(nyr::ascii::Trimmed(text));
    if (delimiter == '\0')
        return;
    // Cells are short: a plain loop beats a search call per cell.
    for (char *p = line.data() + start, *stop = line.data() + line.size(); p != stop; ++p)
        *p = *p == delimiter ? replacement : *p;
}

// The longest prefix of at most `max` bytes that does not split a UTF-8
// character.
std::string CutLabel(std::string label, std::size_t max)
{
    if (label.size() <= max)
        return label;
    std::size_t n = max;
    while (n > 0 && (static_cast<unsigned char>(label[n]) & 0xC0) == 0x80)
        --n;
    label.resize(n);
    return label;
}

// The file of an export: created anew (replacing one that exists), written
// in large blocks. `error` keeps the errno of the first failure.
class ExportFile
{
public:
    explicit ExportFile(const std::string& path)
        : m_fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666))
    {
        if (m_fd < 0)
            m_error = errno;
        else
            m_buffer.reserve(kWriteChunk + 4096);
    }
    ~ExportFile()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    ExportFile(const ExportFile&) = delete;
    ExportFile& operator=(const ExportFile&) = delete;

    bool IsOpen() const { return m_fd >= 0; }
    int Error() const { return m_error; }

    bool Write(const std::string& text)
    {
        m_buffer += text;
        return m_buffer.size() < kWriteChunk || Flush();
    }

    // Writes what is gathered and closes the file.
    bool Close()
    {
        const bool ok = Flush();
        const int fd = m_fd;
        m_fd = -1;
        if (::close(fd) != 0 && ok) {
            m_error = errno;
            return false;
        }
        return ok;
    }

private:
    bool Flush()
    {
        const char* p = m_buffer.data();
        std::size_t left = m_buffer.size();
        while (left > 0) {
            const ssize_t n = ::write(m_fd, p, left);
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                m_error = errno;
                return false;
            }
            p += n;
            left -= static_cast<std::size_t>(n);
        }
        m_buffer.clear();
        return true;
    }

    int m_fd;
    int m_error = 0;
    std::string m_buffer;
};

// The file types of the filter text NYR_IDS_SAVE_AS_FILTER: descriptions and extensions, in
// the order of the type bits 1, 2, 4.
struct FileTypeEntry
{
    QString description;
    QString extension;  // ".csv"
    int type;
};

std::vector<FileTypeEntry> FileTypes()
{
    std::vector<FileTypeEntry> types;
    const QStringList parts = Text(NYR_IDS_SAVE_AS_FILTER).split(QLatin1Char('|'));
    for (qsizetype i = 0; i + 1 < parts.size() && !parts[i].isEmpty() && types.size() < 3; i += 2) {
        QString extension = parts[i + 1];
        extension.remove(QLatin1Char('*'));
        types.push_back({parts[i], extension, 1 << types.size()});
    }
    return types;
}

}  // namespace

struct CNyrListViewSaveAsDlgCV::Private
{
    SAVE_AS_INFO* info;
    std::vector<FileTypeEntry> types = FileTypes();
    QLineEdit* fileName = nullptr;
    QToolButton* browse = nullptr;
    QComboBox* fileType = nullptr;
    QCheckBox* header = nullptr;
    QGroupBox* rows = nullptr;
    QRadioButton* saveWhat[3] = {};
    QDialogButtonBox* buttons = nullptr;

    QString Extension(int type) const
    {
        for (const FileTypeEntry& t : types) {
            if (t.type == type)
                return t.extension;
        }
        return {};
    }

    void CreateControls(QDialog* dialog)
    {
        fileName = new QLineEdit(dialog);
        browse = new QToolButton(dialog);
        browse->setText(QStringLiteral("..."));
        browse->setToolTip(Text(56118));
        fileType = new QComboBox(dialog);
        for (const FileTypeEntry& t : types)
            fileType->addItem(t.description, t.type);
        header = new QCheckBox(Text(NYR_IDS_SAVE_AS_INCLUDE_HEADER), dialog);
        rows = new QGroupBox(dialog);
        auto* rowsLayout = new QHBoxLayout(rows);
        auto* group = new QButtonGroup(dialog);
        for (int i = 0; i < 3; ++i) {
            saveWhat[i] = new QRadioButton(Text(NYR_IDS_ROWS_ALL + static_cast<unsigned int>(i)), rows);
            group->addButton(saveWhat[i], i);
            rowsLayout->addWidget(saveWhat[i]);
        }
        buttons = new QDialogButtonBox(dialog);
        buttons->addButton(Text(NYR_IDS_BUTTON_OK), QDialogButtonBox::AcceptRole);
        buttons->addButton(Text(NYR_IDS_BUTTON_CANCEL), QDialogButtonBox::RejectRole);
    }

    // Name and browse button, type, header, rows, OK and Cancel: one grid.
    void LayOut(QDialog* dialog)
    {
        auto* nameLabel = new QLabel(Text(NYR_IDS_FILE_DLG_FILE_NAME), dialog);
        nameLabel->setBuddy(fileName);
        auto* typeLabel = new QLabel(Text(NYR_IDS_FILE_DLG_FILE_TYPE), dialog);
        typeLabel->setBuddy(fileType);
        auto* grid = new QGridLayout(dialog);
        grid->addWidget(nameLabel, 0, 0);
        grid->addWidget(fileName, 0, 1);
        grid->addWidget(browse, 0, 2);
        grid->addWidget(typeLabel, 1, 0);
        grid->addWidget(fileType, 1, 1, 1, 2);
        grid->addWidget(header, 2, 1, 1, 2);
        grid->addWidget(rows, 3, 0, 1, 3);
        grid->addWidget(buttons, 4, 0, 1, 3);
    }

    // A name that ends in one of the types' extensions follows the type.
    void TypeChanged()
    {
        const QString name = fileName->text();
        const QString extension = Extension(fileType->currentData().toInt());
        for (const FileTypeEntry& t : types) {
            if (!t.extension.isEmpty() && name.endsWith(t.extension, Qt::CaseInsensitive)) {
                fileName->setText(name.left(name.size() - t.extension.size()) + extension);
                break;
            }
        }
    }
};

CNyrListViewSaveAsDlgCV::CNyrListViewSaveAsDlgCV(SAVE_AS_INFO& info, QWidget* parent)
    : QDialog(parent), d(new Private{&info})
{
    setWindowTitle(Text(NYR_IDS_SAVE_AS_TITLE));
    d->CreateControls(this);
    d->LayOut(this);
    connect(d->buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(d->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(d->browse, &QToolButton::clicked, this, &CNyrListViewSaveAsDlgCV::Browse);
    connect(d->fileType, &QComboBox::currentIndexChanged, this, [this] { d->TypeChanged(); });
    InfoToControls();
}

CNyrListViewSaveAsDlgCV::~CNyrListViewSaveAsDlgCV() = default;

void CNyrListViewSaveAsDlgCV::InfoToControls()
{
    const SAVE_AS_INFO& info = *d->info;
    d->fileName->setText(QString::fromStdString(info.fileName));
    const int type = d->fileType->findData(info.fileType);
    d->fileType->setCurrentIndex(std::max(type, 0));
    d->header->setChecked(info.includeHeader);
    d->rows->setVisible(info.offerRowChoice);
    d->saveWhat[info.saveWhat >= 0 && info.saveWhat < 3 ? info.saveWhat : SaveAll]->setChecked(true);
}

void CNyrListViewSaveAsDlgCV::UpdateRowChoice()
{
    const bool enabled[3] = {true, GetItemsSelected() != 0, GetItemsChecked() != 0};
    for (int i = 0; i < 3; ++i) {
        d->saveWhat[i]->setEnabled(enabled[i]);
        // A choice that makes no sense now falls back to all rows.
        if (d->saveWhat[i]->isChecked() && !enabled[i])
            d->saveWhat[SaveAll]->setChecked(true);
    }
}

void CNyrListViewSaveAsDlgCV::showEvent(QShowEvent* e)
{
    UpdateRowChoice();
    QDialog::showEvent(e);
}

void CNyrListViewSaveAsDlgCV::ControlsToInfo()
{
    SAVE_AS_INFO& info = *d->info;
    info.fileName = d->fileName->text().trimmed().toStdString();
    if (d->fileType->currentIndex() >= 0)
        info.fileType = d->fileType->currentData().toInt();
    info.includeHeader = d->header->isChecked();
    if (info.offerRowChoice) {
        for (int i = 0; i < 3; ++i) {
            if (d->saveWhat[i]->isChecked())
                info.saveWhat = i;
        }
    }
}

void CNyrListViewSaveAsDlgCV::Browse()
{
    QFileDialog dialog(this, Text(NYR_IDS_FILE_DLG_SAVE_AS), d->fileName->text());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const FileTypeEntry& t : d->types)
        filters << t.description + QStringLiteral(" (*") + t.extension + QLatin1Char(')');
    dialog.setNameFilters(filters);
    const int type = std::max(d->fileType->currentIndex(), 0);
    if (type < filters.size())
        dialog.selectNameFilter(filters[type]);
    dialog.setDefaultSuffix(d->Extension(d->fileType->currentData().toInt()).mid(1));
    if (NyrExecDialog(dialog) != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    d->fileName->setText(dialog.selectedFiles().front());
    const int chosen = static_cast<int>(filters.indexOf(dialog.selectedNameFilter()));
    if (chosen >= 0)
        d->fileType->setCurrentIndex(chosen);
}

void CNyrListView::OnSaveAsBegin(CNyrListViewSaveAsDlgCV::SAVE_AS_INFO&)
{
}

int CNyrListViewSaveAsDlgCV::Run(const std::string& section)
{
    LoadCustomProperties(section);
    if (NyrExecDialog(*this) != QDialog::Accepted)
        return 0;
    StoreCustomProperties(section);
    return 1;
}

void CNyrListViewSaveAsDlgCV::accept()
{
    ControlsToInfo();
    SAVE_AS_INFO& info = *d->info;
    if (info.fileName.empty()) {
        NyrMessageBox(NyrLoadString(NYR_IDS_FILE_NAME_EMPTY), windowTitle().toStdString(),
                      NYR_MB_OK | NYR_MB_ICONWARNING);
        d->fileName->setFocus();
        return;
    }
    // A name without an extension takes the type's.
    if (QFileInfo(QString::fromStdString(info.fileName)).suffix().isEmpty()) {
        info.fileName += d->Extension(info.fileType).toStdString();
        d->fileName->setText(QString::fromStdString(info.fileName));
    }
    if (!CNyrBrowse::ConfirmReplace(this, QString::fromStdString(info.fileName), windowTitle())) {
        d->fileName->setFocus();
        return;
    }
    if (SaveData())
        QDialog::accept();
}

char CNyrListViewSaveAsDlgCV::Delimiter(int fileType)
{
    switch (fileType) {
    case FileTypeCsv: return ',';
    case FileTypeTxt: return '\t';
    case FileTypePrn: return ' ';
    default: return '\0';
    }
}

char CNyrListViewSaveAsDlgCV::Replacement(int fileType)
{
    switch (fileType) {
    case FileTypeCsv:
    case FileTypeTxt: return ';';
    case FileTypePrn: return '_';
    default: return '\0';
    }
}

int CNyrListViewSaveAsDlgCV::GetColumns(std::vector<COL_ORDER>& columns) const
{
    columns.clear();
    const CNyrListView* list = d->info->list;
    if (!list)
        return 0;
    for (int c = 0;; ++c) {
        const int order = list->GetColumnOrder(c);
        if (order < 0)
            break;
        columns.push_back({c, order});
    }
    std::stable_sort(columns.begin(), columns.end(),
                     [](const COL_ORDER& a, const COL_ORDER& b) { return a.order < b.order; });
    return static_cast<int>(columns.size());
}

void CNyrListViewSaveAsDlgCV::GetHeaderData(const std::vector<COL_ORDER>& columns, std::string& line)
{
    const char delimiter = Delimiter(d->info->fileType);
    const char replacement = Replacement(d->info->fileType);
    line.clear();
    for (const COL_ORDER& c : columns) {
        // Only after text: an empty first label shifts the header (intended).
        if (delimiter != '\0' && !line.empty())
            line += delimiter;
        AppendCell(line, CutLabel(d->info->list->GetColumnLabel(c.index), kMaxLabel), delimiter, replacement);
    }
    line += "\r\n";
}

void CNyrListViewSaveAsDlgCV::GetItemData(const std::vector<COL_ORDER>& columns, int screenItem, std::string& line)
{
    const char delimiter = Delimiter(d->info->fileType);
    const char replacement = Replacement(d->info->fileType);
    line.clear();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        // Also before the second column of a line still empty: a data row
        // keeps its empty first cell.
        if (delimiter != '\0' && (!line.empty() || i == 1))
            line += delimiter;
        AppendCell(line, d->info->list->GetItemText(screenItem, columns[i].index), delimiter, replacement);
    }
    line += "\r\n";
}

int CNyrListViewSaveAsDlgCV::IsItemToSave(int screenItem)
{
    const CNyrListView* list = d->info->list;
    switch (d->info->saveWhat) {
    case SaveAll: return 1;
    case SaveSelected: return list->GetItemState(screenItem, LVIS_SELECTED) != 0;
    case SaveChecked: return list->GetCheck(screenItem) != 0;
    default: return 0;
    }
}

int CNyrListViewSaveAsDlgCV::GetItemsSelected()
{
    return d->info->list && d->info->list->selectionModel() && d->info->list->selectionModel()->hasSelection();
}

int CNyrListViewSaveAsDlgCV::GetItemsChecked()
{
    const CNyrListView* list = d->info->list;
    for (int r = 0, count = list ? list->GetItemCount() : 0; r < count; ++r) {
        if (list->GetCheck(r))
            return 1;
    }
    return 0;
}

void CNyrListViewSaveAsDlgCV::DisableFileTypeCombo(int disable)
{
    d->fileType->setEnabled(!disable);
}

int CNyrListViewSaveAsDlgCV::SaveData()
{
    CNyrWaitCursor wait;
    const SAVE_AS_INFO& info = *d->info;
    if (info.fileName.empty() || !info.list)
        return 0;
    const auto fail = [this](int error) {
        NyrMessageBox(NyrSystemErrorText(static_cast<unsigned long>(error)), windowTitle().toStdString(),
                      NYR_MB_OK | NYR_MB_ICONERROR);
        return 0;
    };
    ExportFile file(info.fileName);
    if (!file.IsOpen())
        return fail(file.Error());
    std::vector<COL_ORDER> columns;
    GetColumns(columns);
    std::string line;
    if (info.includeHeader) {
        GetHeaderData(columns, line);
        if (!file.Write(line))
            return fail(file.Error());
    }
    for (int row = 0, rows = info.list->GetItemCount(); row < rows; ++row) {
        if (!IsItemToSave(row))
            continue;
        GetItemData(columns, row, line);
        if (!file.Write(line))
            return fail(file.Error());
    }
    if (!file.Close())
        return fail(file.Error());
    return 1;
}

void CNyrListViewSaveAsDlgCV::LoadCustomProperties(const std::string& section)
{
    SAVE_AS_INFO& info = *d->info;
    const auto header = static_cast<int>(
        CNyrProfileEntries::ReadNyrProfileInt(section, CNyrProfileEntries::ListViewSaveAsDlgIncludeHeader(), -1));
    if (header == 0 || header == 1)
        info.includeHeader = header == 1;
    if (info.offerRowChoice) {
        const auto what = static_cast<int>(
            CNyrProfileEntries::ReadNyrProfileInt(section, CNyrProfileEntries::ListViewSaveAsDlgSaveWhat(), -1));
        if (what >= SaveAll && what <= SaveChecked)
            info.saveWhat = what;
    }
    InfoToControls();
    UpdateRowChoice();
}

void CNyrListViewSaveAsDlgCV::StoreCustomProperties(const std::string& section)
{
    const SAVE_AS_INFO& info = *d->info;
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewSaveAsDlgIncludeHeader(),
                                           info.includeHeader ? 1 : 0);
    CNyrProfileEntries::WriteNyrProfileInt(section, CNyrProfileEntries::ListViewSaveAsDlgSaveWhat(), info.saveWhat);
}

CNyrListViewSaveAsDlgCV::SAVE_AS_INFO& CNyrListViewSaveAsDlgCV::Info() const
{
    return *d->info;
}

QLineEdit* CNyrListViewSaveAsDlgCV::FileNameEdit() const
{
    return d->fileName;
}

QComboBox* CNyrListViewSaveAsDlgCV::FileTypeBox() const
{
    return d->fileType;
}

QCheckBox* CNyrListViewSaveAsDlgCV::HeaderBox() const
{
    return d->header;
}

QRadioButton* CNyrListViewSaveAsDlgCV::SaveWhatButton(int saveWhat) const
{
    return saveWhat >= 0 && saveWhat < 3 ? d->saveWhat[saveWhat] : nullptr;
}

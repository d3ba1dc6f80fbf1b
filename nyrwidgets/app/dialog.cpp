#include "nyrwidgets/app/dialog.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <climits>

#include "nyr/frame/resource_module.h"
#include "nyr/frame/text_ids.h"
#include "nyr/util/profile_entries.h"
#include "nyrwidgets/frame/dialog_hook.h"
#include "nyrwidgets/frame/help_app.h"
#include "nyrwidgets/input/input_dialog.h"

namespace {

constexpr int kMarginUnits = 7;
constexpr int kSpacingUnits = 4;
constexpr unsigned kHelpContext = 1;  // the help command that shows a context's topic

int StoredInt(const std::string& section, const char* entry)
{
    return static_cast<int>(CNyrProfileEntries::ReadNyrProfileInt(section, entry, INT_MIN));
}

// The screen the rectangle is mostly on, else the primary one.
QScreen* ScreenFor(const QRect& rect)
{
    QScreen* best = QGuiApplication::primaryScreen();
    long long bestArea = 0;
    for (QScreen* screen : QGuiApplication::screens()) {
        const QRect common = screen->availableGeometry().intersected(rect);
        const long long area = common.isEmpty() ? 0 : 1LL * common.width() * common.height();
        if (area > bestArea) {
            best = screen;
            bestArea = area;
        }
    }
    return best;
}

}  // namespace

struct CNyrDialog::Private
{
    std::string section;
    QVBoxLayout* content = nullptr;
    QDialogButtonBox* box = nullptr;
    QPushButton* buttons[4] = {};  // OK, Cancel, Apply, Help
    quint32 helpContext = 0;
    bool placed = false;  // the stored geometry was looked at, at the first show
};

CNyrDialog::CNyrDialog(QWidget* parent, const std::string& settingsSection, unsigned buttons)
    : QDialog(parent), d(std::make_unique<Private>())
{
    d->section = settingsSection;
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(DialogUnitsX(kMarginUnits), DialogUnitsY(kMarginUnits), DialogUnitsX(kMarginUnits),
                               DialogUnitsY(kMarginUnits));
    layout->setSpacing(DialogUnitsY(kSpacingUnits));
    d->content = new QVBoxLayout;
    d->content->setContentsMargins(0, 0, 0, 0);
    d->content->setSpacing(DialogUnitsY(kSpacingUnits));
    layout->addLayout(d->content, 1);

    d->box = new QDialogButtonBox(this);
    const struct
    {
        eButton button;
        unsigned text;
        QDialogButtonBox::ButtonRole role;
    } kinds[] = {{eOK, NYR_IDS_OK, QDialogButtonBox::AcceptRole},
                 {eCancel, NYR_IDS_BUTTON_CANCEL, QDialogButtonBox::RejectRole},
                 {eApply, NYR_IDS_DIALOG_APPLY, QDialogButtonBox::ApplyRole},
                 {eHelp, NYR_IDS_DIALOG_HELP, QDialogButtonBox::HelpRole}};
    for (int i = 0; i < 4; ++i)
        if (buttons & kinds[i].button)
            d->buttons[i] = d->box->addButton(QString::fromStdString(NyrLoadString(kinds[i].text)), kinds[i].role);
    if (d->buttons[0])
        d->buttons[0]->setDefault(true);
    layout->addWidget(d->box);
    connect(d->box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(d->box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(d->box, &QDialogButtonBox::helpRequested, this, [this] { OnHelp(); });
    if (d->buttons[2])
        connect(d->buttons[2], &QPushButton::clicked, this, [this] { Apply(); });
}

CNyrDialog::~CNyrDialog() = default;

QVBoxLayout* CNyrDialog::ContentLayout() const
{
    return d->content;
}

QPushButton* CNyrDialog::Button(eButton button) const
{
    switch (button) {
    case eOK: return d->buttons[0];
    case eCancel: return d->buttons[1];
    case eApply: return d->buttons[2];
    case eHelp: return d->buttons[3];
    }
    return nullptr;
}

QDialogButtonBox* CNyrDialog::ButtonBox() const
{
    return d->box;
}

int CNyrDialog::DialogUnitsX(int units) const
{
    return (units * fontMetrics().averageCharWidth() + 2) / 4;
}

int CNyrDialog::DialogUnitsY(int units) const
{
    return (units * fontMetrics().height() + 4) / 8;
}

void CNyrDialog::SetHelpContext(quint32 context)
{
    d->helpContext = context;
}

quint32 CNyrDialog::HelpContext() const
{
    return d->helpContext;
}

const std::string& CNyrDialog::SettingsSection() const
{
    return d->section;
}

int CNyrDialog::Exec()
{
    return NyrExecDialog(*this);
}

void CNyrDialog::accept()
{
    if (NyrValidateInputControls(this) || !OnOK())
        return;
    emit applied();
    QDialog::accept();
}

bool CNyrDialog::OnOK()
{
    return OnApply();
}

bool CNyrDialog::OnApply()
{
    return true;
}

void CNyrDialog::OnHelp()
{
    NyrGetHelpApp().ShowHelp(d->helpContext, kHelpContext);
}

void CNyrDialog::Apply()
{
    if (!NyrValidateInputControls(this) && OnApply())
        emit applied();
}

void CNyrDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F1 && event->modifiers() == Qt::NoModifier) {
        OnHelp();
        return;
    }
    QDialog::keyPressEvent(event);
}

void CNyrDialog::setVisible(bool visible)
{
    if (!visible || d->placed || isVisible()) {
        QDialog::setVisible(visible);
        return;
    }
    d->placed = true;
    const bool restored = RestoreGeometry();
    QDialog::setVisible(true);
    if (restored)
        KeepOnScreen();
}

void CNyrDialog::hideEvent(QHideEvent* event)
{
    SaveGeometry();
    QDialog::hideEvent(event);
}

void CNyrDialog::SaveGeometry() const
{
    if (d->section.empty())
        return;
    CNyrProfileEntries::WriteNyrProfileInt(d->section, CNyrProfileEntries::DialogEntryWindowLeft(), pos().x());
    CNyrProfileEntries::WriteNyrProfileInt(d->section, CNyrProfileEntries::DialogEntryWindowTop(), pos().y());
    CNyrProfileEntries::WriteNyrProfileInt(d->section, CNyrProfileEntries::SelectFilenameEntryWindowWidth(), width());
    CNyrProfileEntries::WriteNyrProfileInt(d->section, CNyrProfileEntries::SelectFilenameEntryWindowHeight(),
                                           height());
}

bool CNyrDialog::RestoreGeometry()
{
    if (d->section.empty())
        return false;
    const int x = StoredInt(d->section, CNyrProfileEntries::DialogEntryWindowLeft());
    const int y = StoredInt(d->section, CNyrProfileEntries::DialogEntryWindowTop());
    const int w = StoredInt(d->section, CNyrProfileEntries::SelectFilenameEntryWindowWidth());
    const int h = StoredInt(d->section, CNyrProfileEntries::SelectFilenameEntryWindowHeight());
    if (x == INT_MIN || y == INT_MIN || w <= 0 || h <= 0 || w > 100000 || h > 100000)
        return false;  // never stored, or not by us: the window system places it
    resize(w, h);
    move(x, y);
    return true;
}

// The screens may have changed since the position was stored: a monitor
// unplugged, a smaller resolution. All of the dialog, frame included, goes
// onto the screen it is mostly on. The frame is known once the window is.
void CNyrDialog::KeepOnScreen()
{
    const QRect frame = frameGeometry();
    const QRect screen = ScreenFor(frame)->availableGeometry();
    const int excessW = std::max(0, frame.width() - screen.width());
    const int excessH = std::max(0, frame.height() - screen.height());
    if (excessW || excessH)
        resize(std::max(width() - excessW, minimumWidth()), std::max(height() - excessH, minimumHeight()));
    const QSize outer = frameGeometry().size();
    move(std::clamp(frame.x(), screen.left(), std::max(screen.left(), screen.right() + 1 - outer.width())),
         std::clamp(frame.y(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - outer.height())));
}

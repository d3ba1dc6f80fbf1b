#include "apps/nyr-survey/tour/tour.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPainter>
#include <QTimer>
#include <cstdio>
#include <utility>

#include "apps/nyr-survey/project/survey_point.h"
#include "apps/nyr-survey/tour/tour_steps.h"
#include "apps/nyr-survey/window/main_window.h"
#include "apps/nyr-survey/window/point_view.h"

namespace survey {

CTourRunner::CTourRunner(const QString& outDir) : m_dir(outDir), m_window(std::make_unique<CMainWindow>())
{
}

CTourRunner::~CTourRunner() = default;

void CTourRunner::Say(const QString& text)
{
    m_log << text;
    std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
}

bool CTourRunner::Check(bool ok, const QString& what)
{
    if (!ok) {
        m_failed = true;
        Say("  FAILED: " + what);
    }
    return ok;
}

QString CTourRunner::File(const QString& name) const
{
    return m_dir + "/" + name;
}

void CTourRunner::Shot(const QString& name, QWidget* dialog)
{
    QApplication::processEvents();
    QPixmap shot = m_window->grab();
    if (dialog) {
        // A dialog is its own window: draw it over the main window, centred,
        // with a frame and its title bar, as a user sees it.
        const QPixmap inner = dialog->grab();
        QPainter painter(&shot);
        const int bar = painter.fontMetrics().height() + 8;
        const QPoint at((shot.width() - inner.width()) / 2, (shot.height() - inner.height() + bar) / 2);
        const QRect frame(at - QPoint(2, bar), inner.size() + QSize(4, bar + 2));
        painter.fillRect(frame, QColor(60, 60, 60));
        painter.setPen(Qt::white);
        painter.drawText(QRect(frame.left() + 8, frame.top(), frame.width() - 16, bar), Qt::AlignVCenter,
                         dialog->windowTitle());
        painter.drawPixmap(at, inner);
    }
    const QString path = File(QString("%1-%2.png").arg(++m_shots, 2, 10, QChar('0')).arg(name));
    Check(shot.save(path, "PNG"), "screenshot " + path);
    Say("  screenshot: " + path);
}

void CTourRunner::ShotMenus(const QString& name, const std::vector<QWidget*>& menus)
{
    QApplication::processEvents();
    QPixmap shot = m_window->grab();
    QPainter painter(&shot);
    for (QWidget* menu : menus)
        painter.drawPixmap(m_window->mapFromGlobal(menu->pos()), menu->grab());
    painter.end();
    const QString path = File(QString("%1-%2.png").arg(++m_shots, 2, 10, QChar('0')).arg(name));
    Check(shot.save(path, "PNG"), "screenshot " + path);
    Say("  screenshot: " + path);
}

QTimer* CTourRunner::WhenModal(const char* className, std::function<void(QDialog&)> act)
{
    auto* timer = new QTimer(m_window.get());
    auto waited = std::make_shared<int>(0);
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, timer, [this, timer, waited, className, act = std::move(act)] {
        QWidget* modal = QApplication::activeModalWidget();
        auto* dialog = qobject_cast<QDialog*>(modal);
        if (dialog && dialog->inherits(className) && dialog->isVisible()) {
            timer->stop();
            timer->deleteLater();
            act(*dialog);
            return;
        }
        if (++*waited > 500) {  // ten seconds
            timer->stop();
            timer->deleteLater();
            Check(false, QString("the dialog %1 did not appear").arg(className));
            if (dialog)
                dialog->reject();
        }
    });
    timer->start();
    return timer;
}

void CTourRunner::Trigger(CMainWindow::eAction action)
{
    m_window->Action(action)->trigger();
    QApplication::processEvents();
}

void CTourRunner::ChooseFile(const QString& path)
{
    WhenModal("QFileDialog", [this, path](QDialog& d) {
        auto& dialog = static_cast<QFileDialog&>(d);
        // Typed into the name field, as a user does: the dialog lists the
        // folder in the background, so selectFile alone may find nothing yet.
        dialog.selectFile(path);
        if (auto* name = dialog.findChild<QLineEdit*>("fileNameEdit"))
            name->setText(path);
        Shot(dialog.acceptMode() == QFileDialog::AcceptSave ? "save-dialog" : "open-dialog", &dialog);
        d.accept();  // QFileDialog's own accept, reached through the base
    });
}

void CTourRunner::PickData(QComboBox* box, long data)
{
    const int index = box->findData(QVariant::fromValue(static_cast<int>(data)));
    Check(index >= 0, QString("the list offers %1").arg(data));
    box->setCurrentIndex(index);
    QApplication::processEvents();
}

QString CTourRunner::Cell(int screenRow, unsigned int realCol) const
{
    const CPointView& view = *m_window->View();
    return QString::fromStdString(view.GetItemText(screenRow, view.ScreenColFromReal(realCol)));
}

int CTourRunner::RealOf(const QString& name) const
{
    const CPointView& view = *m_window->View();
    for (unsigned int r = 0; r < view.GetRealItemCount(); ++r) {
        const auto* point = static_cast<const CSurveyPoint*>(view.GetRealItem(r));
        if (point && !point->IsDeleted() && QString::fromStdString(point->Name()) == name)
            return static_cast<int>(r);
    }
    return -1;
}

int CTourRunner::Focus(const QString& name)
{
    CPointView& view = *m_window->View();
    const int real = RealOf(name);
    if (!Check(real >= 0, "the sample has " + name))
        return -1;
    view.SelectAllItems(0);
    view.SelectRealItem(static_cast<unsigned int>(real), 1);
    view.FocusRealItem(static_cast<unsigned int>(real));
    view.EnsureRealItemVisible(static_cast<unsigned int>(real));
    QApplication::processEvents();
    return view.ScreenItemFromReal(static_cast<unsigned int>(real));
}

int RunTour(const QString& outDir)
{
    CTourRunner tour(outDir);
    return tour.Run();
}

}  // namespace survey

#pragma once

#include <QDialog>
#include <memory>

#include "nyr/platform/export.h"

class CNyrListViewFind;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

// The modeless find dialog of a list view, owned by its finder
// (CNyrListViewFind). Every control edits the process-wide search criteria
// at once, so Find Next and Find Previous from the view's keys (F3,
// Shift+F3) and menus search for what the dialog shows.
//
// Controls: the search text; the column choice, "[All columns]" first and
// then the view's columns in display order; the check boxes match whole
// word, match case and search from beginning; Find Next (the default
// button, Enter), Find Previous; select all / add to selection, check all /
// add to checked (the check buttons only for a view with check boxes). The
// buttons that search are disabled while the text is empty. F3 and Shift+F3
// work in the dialog too; Esc and Close hide it (the finder keeps it).
class NYR_EXPORT CNyrListViewFindDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CNyrListViewFindDialog(CNyrListViewFind* finder, QWidget* parent = nullptr);
    ~CNyrListViewFindDialog() override;

    // Refills the column choice from the view and sets every control from
    // the criteria.
    void UpdateControls();

    QLineEdit* SearchEdit() const;
    QComboBox* ColumnBox() const;
    QCheckBox* MatchWordBox() const;
    QCheckBox* MatchCaseBox() const;
    QCheckBox* FromBeginningBox() const;
    QPushButton* FindNextButton() const;
    QPushButton* FindPrevButton() const;
    QPushButton* SelectAllButton() const;
    QPushButton* AddToSelectionButton() const;
    QPushButton* CheckAllButton() const;
    QPushButton* AddToCheckedButton() const;

public slots:
    void OnFindNextClicked();
    void OnFindPrevClicked();
    void OnSelectAllClicked();
    void OnAddToSelectionClicked();
    void OnCheckAllClicked();
    void OnAddToCheckedClicked();

protected:
    void keyPressEvent(QKeyEvent* e) override;
    void hideEvent(QHideEvent* e) override;

private:
    struct Private;
    std::unique_ptr<Private> d;

    void EnableButtons();
};

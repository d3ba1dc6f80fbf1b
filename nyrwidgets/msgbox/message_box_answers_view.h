#pragma once

#include <QWidget>
#include <memory>
#include <string>

#include "nyr/platform/export.h"

class QTreeWidget;

// Lets the user review the remembered message-box answers and ask again.
//
// A tree of the registered messages (CNyrMessageBox) by key level: one item
// stands for all messages, below it one item per key level ("Import", then
// "Overwrite" ...). Columns: the level's name with a check box that is ticked
// when the message is not prompted any more ("Do not prompt in future"; a
// level's box is ticked when all messages below it are, partly when some
// are), the remembered answer (the button's caption, "none" when there is
// none) and the message's description or else its text.
//
// Unticking a box asks again for every message at or below that item; a box
// cannot be ticked here (only an answer in the message box itself can be
// remembered). Changes go to the table only: Apply() stores them in the
// settings file, Revert() undoes them, so the view fits a dialog with OK and
// Cancel.
//
// Texts: the window title is "Remembered Answers". The headings come from
// CNyrMessageBox::GetSub1Text() (key column; "Remembered Answers" when
// empty), GetSub2Text() (answer column; "Answer" when empty) and
// GetSub3Text() (text column; "Message" when empty), the
// label of the item for all messages from GetSub4Text() (else the
// application's name, else "Remembered Answers"); read when the tree is built.
class NYR_EXPORT CNyrMessageBoxAnswersView : public QWidget
{
    Q_OBJECT

public:
    // Shows the messages at or below the key level `prefix` ("" for all) and
    // holds the table's current values as the ones Revert() returns to.
    explicit CNyrMessageBoxAnswersView(QWidget* parent = nullptr, const std::string& prefix = {});
    ~CNyrMessageBoxAnswersView() override;
    CNyrMessageBoxAnswersView(const CNyrMessageBoxAnswersView&) = delete;
    CNyrMessageBoxAnswersView& operator=(const CNyrMessageBoxAnswersView&) = delete;

    // Asks again (clears the do-not-prompt flag) for every shown message at or
    // below the key level `key` ("" for all shown), as unticking its box does.
    void AskAgain(const std::string& key);
    // Whether the table differs from the values held (at construction or the
    // last Apply).
    bool IsModified() const;
    // Stores the table in the settings file (WriteIniFile) and holds the
    // values as the new originals; returns the number of messages written.
    int Apply();
    // Puts the held values back into the table and shows them.
    void Revert();
    // Rebuilds the tree from the table.
    void Refresh();

    QTreeWidget* Tree() const;

signals:
    // The user (or AskAgain) changed the table.
    void Changed();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

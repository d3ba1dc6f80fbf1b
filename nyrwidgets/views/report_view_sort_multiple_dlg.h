#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "nyr/platform/export.h"
#include "nyrwidgets/views/report_view.h"

class QComboBox;

// The "By multiple columns..." dialog: three sort keys, each a column choice
// (which may be empty) with a direction. OK refuses a column chosen twice
// with "Same column selected twice" and puts the focus on the offending
// choice; otherwise GetSortState gives the chosen keys in order, empty
// choices left out.
class NYR_EXPORT CNyrReportViewSortMultipleDlg : public QDialog
{
    Q_OBJECT
public:
    // The value of the empty choice.
    static constexpr int kNoColumn = -4711;

    // Offers every column of the view that is not deleted, by its label, and
    // starts from the view's sort state.
    explicit CNyrReportViewSortMultipleDlg(CNyrReportView* view, QWidget* parent = nullptr);
    ~CNyrReportViewSortMultipleDlg() override;

    // Key 0, 1 or 2: the real column (kNoColumn for none) and direction. A
    // column the dialog does not offer sets the empty choice.
    void SetChoice(int key, int realCol, int ascending);
    int GetChoice(int key, int* ascending = nullptr) const;
    QComboBox* ChoiceBox(int key) const;

    std::vector<CNyrReportView::SORT_STATE_REALCOL> GetSortState() const;

    // Validates, then closes with Accepted.
    void accept() override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

#pragma once

#include "nyrwidgets/app/dialog.h"

class CNyrMessageBoxAnswersView;

namespace survey {

// Settings > Remembered answers: the library's view of the remembered
// message-box answers in a dialog; OK stores what the user changed, Cancel
// forgets it.
class CAnswersDialog : public CNyrDialog
{
    Q_OBJECT
public:
    explicit CAnswersDialog(QWidget* parent = nullptr);
    ~CAnswersDialog() override;

    CNyrMessageBoxAnswersView* View() const { return m_view; }

    void reject() override;

protected:
    bool OnApply() override;

private:
    CNyrMessageBoxAnswersView* m_view;
};

}  // namespace survey

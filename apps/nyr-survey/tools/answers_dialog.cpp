#include "apps/nyr-survey/tools/answers_dialog.h"

#include <QVBoxLayout>


#include "apps/nyr-survey/app/texts.h"
#include "nyrwidgets/msgbox/message_box_answers_view.h"

namespace survey {

CAnswersDialog::CAnswersDialog(QWidget* parent)
    : CNyrDialog(parent, "NyrSurvey/AnswersDialog"), m_view(new CNyrMessageBoxAnswersView(this))
{
    setObjectName("AnswersDialog");
    setWindowTitle(QText(TxtRememberedAnswers).remove('&').remove("..."));
    ContentLayout()->addWidget(m_view);
    resize(640, 320);
}

CAnswersDialog::~CAnswersDialog() = default;

bool CAnswersDialog::OnApply()
{
    m_view->Apply();
    return true;
}

void CAnswersDialog::reject()
{
    m_view->Revert();
    CNyrDialog::reject();
}

}  // namespace survey

#include "apps/nyr-survey/tools/answers_dialog.h"

#include <QDialogButtonBox>
#include <QVBoxLayout>

#include "apps/nyr-survey/app/texts.h"
#include "nyrwidgets/msgbox/message_box_answers_view.h"

namespace survey {

CAnswersDialog::CAnswersDialog(QWidget* parent) : QDialog(parent), m_view(new CNyrMessageBoxAnswersView(this))
{
    setObjectName("AnswersDialog");
    setWindowTitle(QText(TxtRememberedAnswers).remove('&').remove("..."));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_view);
    layout->addWidget(buttons);
    resize(640, 320);
}

CAnswersDialog::~CAnswersDialog() = default;

void CAnswersDialog::accept()
{
    m_view->Apply();
    QDialog::accept();
}

void CAnswersDialog::reject()
{
    m_view->Revert();
    QDialog::reject();
}

}  // namespace survey

#include "nyrwidgets/views/views_text_p.h"

#include "nyr/frame/resource_module.h"

QString nyr::views_detail::Text(unsigned int textId)
{
    return QString::fromStdString(NyrLoadString(textId));
}

QString nyr::views_detail::MenuTextAsButton(unsigned int textId)
{
    QString text = Text(textId).section(QLatin1Char('\t'), 0, 0);
    while (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

std::string nyr::views_detail::MenuTextAsTitle(unsigned int textId)
{
    return MenuTextAsButton(textId).remove(QLatin1Char('&')).toStdString();
}

// The text that an operator hands to support, for the clipboard or a mail. Any thread.
#pragma once

#include "support/os_info.h"

// What the program says about itself.
struct ProductFacts
{
    QString product;
    QString version;
    QString date;
};

// Headings between stars, "key: value" rows, an empty line after each section; line feeds.
QString supportText(const ProductFacts& product, const QList<SystemSection>& system,
                    const QList<DriverSection>& drivers);

// A mailto link whose body asks for a message above the support text.
QString supportMailLink(const QString& address, const QString& subject, const QString& text);

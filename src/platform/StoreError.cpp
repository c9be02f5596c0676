#include "platform/StoreError.h"

StoreError::StoreError(int number, QString text)
    : m_number(number), m_text(std::move(text)),
      m_what(QStringLiteral("Error %1: %2").arg(number).arg(m_text).toUtf8())
{
}

bool StoreError::heldExclusively() const
{
    return m_number == err::FileInUse || m_number == err::PlacedInState ||
           m_number == err::OpenedExclusively;
}

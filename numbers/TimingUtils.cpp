#include "TimingUtils.h"

#include "platform/Platform.h"

void TimingUtils::Start()
{
    m_bRunning = true;
    m_nStart = GetTickCount();
}

unsigned int TimingUtils::Stop()
{
    if (!m_bRunning)
        return 0;
    m_bRunning = false;
    return GetTickCount() - m_nStart;
}

#include "output/encodequeue.h"

void EncodeQueue::clear()
{
    *this = EncodeQueue();
}

void EncodeQueue::append(const DataSource &source)
{
    m_sources.append(source);
}

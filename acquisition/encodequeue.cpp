#include "acquisition/encodequeue.h"

void EncodeQueue::append(const DataSource &source)
{
    m_sources.append(source);
}

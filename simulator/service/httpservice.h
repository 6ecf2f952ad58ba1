#pragma once

#include "simulator/service/fault.h"
#include "simulator/service/journal.h"
#include "simulator/service/picturestore.h"

#include <memory>

namespace httplib {
struct Request;
struct Response;
} // namespace httplib

namespace Simulator {

class Archive;

/**
 * What is done with one HTTP request: noted, answered, spoilt.
 *
 * Serves several threads at once.
 */
class HttpService
{
public:
    explicit HttpService(std::shared_ptr<const Archive> archive);

    Journal &journal() { return m_journal; }
    PictureStore &pictures() { return m_pictures; }

    /// Called on the thread of the connection, which some faults wait for or break.
    void serve(const httplib::Request &request, httplib::Response &response);

private:
    void serveFaulty(Operation operation, const httplib::Request &request,
                     const QVector<Fault> &faults, httplib::Response &response);

    std::shared_ptr<const Archive> m_archive;
    PictureStore m_pictures;
    Journal m_journal;
};

} // namespace Simulator

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

struct tagMPEVENT;
class RemoteMemAPI;

// Receives the input events of one port. Owner: RemoteMemAPI, for the life of a route.
class MessageProcessor
{
public:
    MessageProcessor(int portID, RemoteMemAPI *memAPI, int midiFilterType)
        : m_portID(portID)
        , m_memAPI(memAPI)
        , m_midiFilterType(midiFilterType)
    {
    }
    virtual ~MessageProcessor() = default;

    int getPortID() const { return m_portID; }
    int getMidiFilterType() const { return m_midiFilterType; }

    // Thread: the port's pusher thread. Any event of any content is safe. The result says whether
    // the event was taken; nobody acts on it.
    virtual bool Process(tagMPEVENT &event) = 0;

protected:
    int m_portID;
    RemoteMemAPI *m_memAPI; // not owned, may be null
    int m_midiFilterType;
};

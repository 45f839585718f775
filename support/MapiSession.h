// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Mails through the user's own mail program: a draft with recipient, subject and attachment comes up, and the
// user decides. It goes through xdg-email, which knows what the desktop's mail program is; it is looked for
// when a session is made, so that a machine without one is no problem until somebody wants to send.
#include <QString>
#include <QStringList>

#include <vector>

struct CMapiRecipient {
    QString Address;
    /// For a mail program's address book; a draft carries the address alone.
    QString FriendlyName;
};

struct CMapiMessage {
    std::vector<CMapiRecipient> To;
    std::vector<CMapiRecipient> CC;
    std::vector<CMapiRecipient> BCC;
    QString Subject;
    QString Body;
    QStringList Attachments;
    /// Names that the recipient is to see; a mail program takes those of the files.
    QStringList AttachmentTitles;
};

class CMapiSession {
  public:
    CMapiSession();

    bool MapiInstalled() const { return !program.isEmpty(); }
    /// Opens the draft and waits until the mail program has taken it. False with LastError() set otherwise.
    bool Send(const CMapiMessage& message);
    /// What the last Send failed of; empty when it worked.
    const QString& LastError() const { return lastError; }

  private:
    QString program;
    QString lastError;
};

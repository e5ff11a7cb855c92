import Murmeli.Report
import Murmeli.Ui

// What somebody was to the meeting.
ClaimCard {
    required property meetingRole value

    stamps: value.stamps
    title: value.who
    lead: value.role
    leadInk: Theme.inkViolet
    body: value.evidence
}

import Murmeli.Report

// A figure that was named.
ClaimCard {
    required property meetingNumber value

    stamps: value.stamps
    compact: true
    large: true
    title: value.metric
    note: value.note
    figure: value.value
}

import Murmeli.Report

// What is easily overlooked.
ClaimCard {
    required property insight value

    stamps: value.stamps
    stampsBelow: true
    title: value.title
    body: value.detail
}

export async function checkRow() {}
